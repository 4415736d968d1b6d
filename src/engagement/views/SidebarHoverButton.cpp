#include "engagement/views/SidebarHoverButton.h"

namespace quillbay {

SidebarHoverButton::SidebarHoverButton(const QString& title, const QIcon& icon, QWidget* parent)
    : QToolButton(parent)
{
    setText(title);
    setIcon(icon);
    setIconSize(QSize(16, 16));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoRaise(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    setStyleSheet(QStringLiteral("QToolButton { text-align: left; padding: 4px 6px; border: none; border-radius: 5px; }"
                                 "QToolButton:hover { background: palette(midlight); }"
                                 "QToolButton::menu-indicator { image: none; }"));
}

} // namespace quillbay
