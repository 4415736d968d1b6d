#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QWidget>

class QLabel;

class QPushButton;
class QStackedWidget;
class QToolButton;
class QTreeView;

namespace quillbay {

class FolderAuthorizationRequiredView;
class HomebrewCacheCleanupFooter;
class HomebrewCacheCleanupStore;
class HomebrewCacheOutlineModel;
class ToastOverlay;
class UnavailablePanel;

// The "Cleanup" page of the Homebrew tools: one of five states (authorization, scanning,
// failed, empty, outline), the error line, the footer, the cleaning overlay, the toast
// and the deletion confirmation. It restores the authorization and scans once per launch
// when it first appears.
class HomebrewCacheCleanupView : public QWidget
{
    Q_OBJECT

public:
    explicit HomebrewCacheCleanupView(HomebrewCacheCleanupStore& store, QWidget* parent = nullptr);

    QWidget* currentPage() const;
    QTreeView* outlineView() const { return m_outline; }
    HomebrewCacheOutlineModel* outlineModel() const { return m_model; }
    ToastOverlay* toast() const { return m_toast; }
    // The open confirmation, if any.
    QMessageBox* confirmation() const { return m_confirmation; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void showToast();
    void requestDelete();
    void confirmDeletion();

    HomebrewCacheCleanupStore& m_store;
    QToolButton* m_rescan;
    QWidget* m_errorLine;
    QLabel* m_errorLabel;
    QStackedWidget* m_pages;
    FolderAuthorizationRequiredView* m_authorization;
    QPushButton* m_chooseFolder;
    QWidget* m_scanning;
    UnavailablePanel* m_failed;
    UnavailablePanel* m_empty;
    QTreeView* m_outline;
    HomebrewCacheOutlineModel* m_model;
    HomebrewCacheCleanupFooter* m_footer;
    QWidget* m_cleaningOverlay;
    ToastOverlay* m_toast;
    QPointer<QMessageBox> m_confirmation;
};

} // namespace quillbay
