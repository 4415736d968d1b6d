#include <QClipboard>
#include <QGuiApplication>

#include "platform/Clipboard.h"

namespace quillbay {

void copyTextToClipboard(const QString& text)
{
    if (auto* clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
}

} // namespace quillbay
