#pragma once

#include <QObject>
#include <QPointer>

#include "core/views/SettingsView.h"

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
    QAction* openSettingsAction() const { return m_openSettings; }
    // The settings window while it exists; it is built on first use and kept.
    SettingsView* settingsView() const { return m_settings; }

    void openWindow();
    // Shows the one settings window, raised above the others when it is already open.
    void openSettings();

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
    QAction* m_openSettings;
    QPointer<SettingsView> m_settings;
    QAction* m_leaveTip;
    QAction* m_helpAndSupport;
    QSystemTrayIcon* m_tray = nullptr;
};

} // namespace quillbay
