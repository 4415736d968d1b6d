#include "core/views/WidgetPickers.h"

#include <QFileDialog>

namespace quillbay {

WidgetPickers::WidgetPickers(QWidget* window)
    : m_window(window)
{
}

void WidgetPickers::chooseFolder(const FolderRequest& request, Answer answer)
{
    auto* dialog = new QFileDialog(m_window, request.message, request.directory);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, request.prompt);
    dialog->setObjectName(QStringLiteral("chooseFolderDialog"));
    auto shared = std::make_shared<Answer>(std::move(answer));
    auto answered = std::make_shared<bool>(false);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, [shared, answered](const QString& path) {
        *answered = true;
        (*shared)(path);
    });
    QObject::connect(dialog, &QFileDialog::finished, dialog, [shared, answered](int) {
        if (!*answered)
            (*shared)(std::nullopt);
    });
    dialog->open();
}

void WidgetPickers::chooseSaveLocation(const SaveRequest& request, Answer answer)
{
    auto* dialog = new QFileDialog(m_window, request.message, request.directory);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(request.suggestedName);
    if (!request.prompt.isEmpty())
        dialog->setLabelText(QFileDialog::Accept, request.prompt);
    if (!request.title.isEmpty())
        dialog->setWindowTitle(request.title);
    if (!request.nameFieldLabel.isEmpty())
        dialog->setLabelText(QFileDialog::FileName, request.nameFieldLabel);
    dialog->setObjectName(QStringLiteral("chooseSaveLocationDialog"));
    auto shared = std::make_shared<Answer>(std::move(answer));
    auto answered = std::make_shared<bool>(false);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, [shared, answered](const QString& path) {
        *answered = true;
        (*shared)(path);
    });
    QObject::connect(dialog, &QFileDialog::finished, dialog, [shared, answered](int) {
        if (!*answered)
            (*shared)(std::nullopt);
    });
    dialog->open();
}

} // namespace quillbay
