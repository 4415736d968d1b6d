#pragma once

#include <QWidget>
#include <memory>

class QAction;
class QStackedWidget;
class QToolBar;

namespace quillbay {

class AppViewModel;
class FolderAuthorizationRequiredView;
class WidgetAlerts;
class WidgetPickers;
class XcodeCleanupContent;
class XcodeCleanupFooter;

// The "Cleanup" screen of the Xcode tools: the authorization request until the Developer
// folder is authorized, then the tree of cleanup items over the footer. Appearing for
// the first time asks for the folder without a panel, so the folder is never touched
// before the user comes here.
class CleanupView : public QWidget
{
    Q_OBJECT

public:
    static constexpr auto downloadXcodeUrl = "macappstore://apps.apple.com/app/id497799835";

    explicit CleanupView(AppViewModel& viewModel, QWidget* parent = nullptr);
    ~CleanupView() override;

    FolderAuthorizationRequiredView* authorizationView() const { return m_authorization; }
    XcodeCleanupContent* content() const { return m_content; }
    XcodeCleanupFooter* footer() const { return m_footer; }
    QAction* rescanAction() const { return m_rescan; }
    bool isShowingAuthorization() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void showInformation();

    AppViewModel& m_viewModel;
    std::unique_ptr<WidgetPickers> m_pickers;
    std::unique_ptr<WidgetAlerts> m_alerts;
    QToolBar* m_toolBar;
    QAction* m_rescan;
    QAction* m_information;
    QStackedWidget* m_stack;
    FolderAuthorizationRequiredView* m_authorization;
    QWidget* m_authorized;
    XcodeCleanupContent* m_content;
    XcodeCleanupFooter* m_footer;
    bool m_didAppear = false;
};

} // namespace quillbay
