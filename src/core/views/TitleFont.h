#pragma once

#include <QFont>
#include <QWidget>

namespace quillbay {

// Titles are the widget's own font, bold and larger, in two sizes only, so that every
// screen's title and every panel's heading look alike across the tools.
enum class TitleSize {
    screen, // the title over a screen's content
    panel, // the heading of a panel standing in for content: empty, unavailable, to authorize
};

inline void setTitleFont(QWidget* widget, TitleSize size)
{
    QFont font = widget->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * (size == TitleSize::screen ? 1.25 : 1.4));
    widget->setFont(font);
}

} // namespace quillbay
