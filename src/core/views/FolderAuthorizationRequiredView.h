#pragma once

#include <QWidget>
#include <optional>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace quillbay {

// The screen of a tool that has no folder yet: the title "Folder Authorization Required"
// with a symbol, a description, an optional error under them, and the tool's buttons last.
class FolderAuthorizationRequiredView : public QWidget
{
    Q_OBJECT

public:
    FolderAuthorizationRequiredView(const QString& description, const QString& systemImage, QWidget* parent = nullptr);

    void setDescription(const QString& description);
    void setErrorMessage(const std::optional<QString>& message);
    std::optional<QString> errorMessage() const;
    // Appends a button to the actions row; the caller connects it.
    QPushButton* addAction(const QString& title, const QString& objectName);

private:
    QLabel* m_description;
    QWidget* m_errorRow;
    QLabel* m_errorLabel;
    QHBoxLayout* m_actions;
};

} // namespace quillbay
