#include "xcode_releases/views/PopoverFrame.h"

#include <QScreen>
#include <QWidget>

namespace quillbay {

PopoverFrame::PopoverFrame(QWidget* parent)
    : QFrame(parent, Qt::Popup)
{
    setAttribute(Qt::WA_NoMouseReplay);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
}

void PopoverFrame::toggleBelow(const QRect& globalAnchor)
{
    if (isVisible()) {
        hide();
        return;
    }
    showBelow(globalAnchor);
}

void PopoverFrame::showBelow(const QRect& globalAnchor)
{
    adjustSize();
    QPoint position(globalAnchor.left(), globalAnchor.bottom() + 4);
    if (const QScreen* screen = parentWidget() ? parentWidget()->screen() : nullptr) {
        const QRect available = screen->availableGeometry();
        position.setX(
            std::clamp(position.x(), available.left(), std::max(available.left(), available.right() - width())));
    }
    move(position);
    show();
}

QRect PopoverFrame::globalRectOf(const QWidget* widget)
{
    return {widget->mapToGlobal(QPoint(0, 0)), widget->size()};
}

} // namespace quillbay
