#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QWidget>

class QCheckBox;
class QLabel;

class QPushButton;

namespace quillbay {

class AppViewModel;

// "Select All", "Deselect All", the totals and "Delete...", which passes through the
// Xcode-is-running warning and the deletion confirmation unless the user asked not to
// see them again.
class XcodeCleanupFooter : public QWidget
{
    Q_OBJECT

public:
    explicit XcodeCleanupFooter(AppViewModel& viewModel, QWidget* parent = nullptr);

    bool isShowingXcodeRunningWarning() const { return m_runningWarning != nullptr; }
    bool isShowingDeletionConfirmation() const { return m_confirmation != nullptr; }
    // The open dialog, for tests and screenshots; null when none is open.
    QMessageBox* xcodeRunningWarning() const { return m_runningWarning; }
    QMessageBox* deletionConfirmation() const { return m_confirmation; }

    void requestDelete();

private:
    void refresh();
    void continueAfterRunningWarning();
    QMessageBox*
    makeDialog(const QString& objectName, const QString& title, const QString& text, const QString& suppressKey);

    AppViewModel& m_viewModel;
    QLabel* m_total;
    QLabel* m_selected;
    QPushButton* m_selectAll;
    QPushButton* m_deselectAll;
    QPushButton* m_delete;
    QPointer<QMessageBox> m_runningWarning;
    QPointer<QMessageBox> m_confirmation;
};

} // namespace quillbay
