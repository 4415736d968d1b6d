#pragma once

#include <QWidget>
#include <optional>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace quillbay {

// The screen of a folder-based tool that has no folder yet: a symbol, the title "Folder
// Authorization Required", what the tool does, an optional error line and the actions.
class FolderAuthorizationRequiredView : public QWidget
{
    Q_OBJECT

public:
    FolderAuthorizationRequiredView(const QString& description, const QString& systemImage, QWidget* parent = nullptr);

    void setDescription(const QString& description);
    void setErrorMessage(const std::optional<QString>& message);
    std::optional<QString> errorMessage() const;

    // Appends a button to the actions row; the first one added is the default. The caller
    // connects it.
    QPushButton* addAction(const QString& title, const QString& objectName);

private:
    QLabel* m_description;
    QLabel* m_errorLabel;
    QWidget* m_error;
    QHBoxLayout* m_actions;
};

} // namespace quillbay
