#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/Pickers.h"

namespace quillbay {

// The open and save panels as window-modal file dialogs; the answer comes back through
// the dialog's signals, never through a nested event loop.
class WidgetPickers final : public Pickers
{
public:
    explicit WidgetPickers(QWidget* window = nullptr);

    void setWindow(QWidget* window) { m_window = window; }
    void chooseFolder(const FolderRequest& request, Answer answer) override;
    void chooseSaveLocation(const SaveRequest& request, Answer answer) override;

private:
    QPointer<QWidget> m_window;
};

} // namespace quillbay
