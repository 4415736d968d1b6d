#pragma once

#include <QObject>

class QAction;
class QSystemTrayIcon;

namespace quillbay {

class ContentView;
class QuillbayApp;

// The application around the window: the menu commands, the tray icon where there is
// no global menu bar, and the one window that closing hides and "Open Window" brings back
// with its state intact.
class AppShell : public QObject
{
    Q_OBJECT

public:
    explicit AppShell(QuillbayApp& app, QObject* parent = nullptr);
    ~AppShell() override;

    ContentView* window() const { return m_window; }
    QAction* openWindowAction() const { return m_openWindow; }
    QAction* quitAction() const { return m_quit; }

    void openWindow();

signals:
    void helpAndSupportRequested();
    void leaveTipRequested();

private:
    void buildMenus();
    void buildTrayIcon();

    QuillbayApp& m_app;
    ContentView* m_window; // owned: deleted with the shell, hidden (not deleted) on close
    QAction* m_openWindow;
    QAction* m_quit;
    QAction* m_leaveTip;
    QAction* m_helpAndSupport;
    QSystemTrayIcon* m_tray = nullptr;
};

} // namespace quillbay
