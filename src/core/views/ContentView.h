#pragma once

#include <QHash>
#include <QMainWindow>
#include <QUuid>

class QAction;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace quillbay {

class EngagementSurfaces;
class QuillbayApp;
class ToastOverlay;

// The main window: a sidebar of six tools in two sections and a detail area. A tool's
// screen is built the first time it is selected, so no tool touches its folders before
// the user goes there. Closing the window only hides it; the state stays for "Open Window".
class ContentView : public QMainWindow
{
    Q_OBJECT

public:
    explicit ContentView(QuillbayApp& app, QWidget* parent = nullptr);

    QUuid selection() const { return m_selection; }
    void select(const QUuid& id);
    QWidget* currentScreen() const;
    ToastOverlay* toast() const { return m_toast; }
    // One action per tool, in sidebar order, on Ctrl+1 to Ctrl+6.
    const QList<QAction*>& toolActions() const { return m_toolActions; }
    EngagementSurfaces* engagement() const { return m_engagement; }

signals:
    void firstShown();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildSidebar();
    void showToastFromModel();

    QuillbayApp& m_app;
    QTreeWidget* m_sidebar;
    QStackedWidget* m_detail;
    ToastOverlay* m_toast;
    EngagementSurfaces* m_engagement; // the sidebar footer, the tip sheet, the forced-update alert
    QHash<QUuid, QWidget*> m_screens;
    QHash<QUuid, QTreeWidgetItem*> m_rows;
    QList<QAction*> m_toolActions;
    QUuid m_selection;
    bool m_wasShown = false;
};

} // namespace quillbay
