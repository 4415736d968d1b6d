#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QMenu;
class QStackedWidget;
class QTreeView;

namespace quillbay {

class AppViewModel;
class XcodeCleanupTreeModel;

// The list of cleanup rows, or the empty state when a finished scan found nothing, with
// the "Cleaning" overlay on top while a clean runs.
class XcodeCleanupContent : public QWidget
{
    Q_OBJECT

public:
    explicit XcodeCleanupContent(AppViewModel& viewModel, QWidget* parent = nullptr);

    QTreeView* treeView() const { return m_tree; }
    XcodeCleanupTreeModel* model() const { return m_model; }
    bool isShowingEmptyState() const;
    bool isShowingCleaningOverlay() const;

    // The context menu of a row: "Show in Finder" for rows with paths; null otherwise.
    // The caller owns it.
    QMenu* contextMenu(const QModelIndex& index);
    // The popover of a row's info button, open after the call; null for rows without one.
    QWidget* showInfoPopover(const QModelIndex& index);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void restoreExpansion();

    AppViewModel& m_viewModel;
    XcodeCleanupTreeModel* m_model;
    QStackedWidget* m_stack;
    QTreeView* m_tree;
    QWidget* m_empty;
    QWidget* m_overlay;
    QTimer m_spinnerTimer;
    QStringList m_expanded;
};

} // namespace quillbay
