#pragma once

#include <QFrame>

namespace quillbay {

// A small floating panel under a control. It closes by the usual gesture (a click
// elsewhere, Escape) and the click that closes it is not passed on, so pressing the
// control that opened it closes it rather than opening it again.
class PopoverFrame : public QFrame
{
    Q_OBJECT

public:
    explicit PopoverFrame(QWidget* parent = nullptr);

    // Shows the panel under the rectangle (global coordinates), or hides it if shown.
    void toggleBelow(const QRect& globalAnchor);
    void showBelow(const QRect& globalAnchor);
    static QRect globalRectOf(const QWidget* widget);
};

} // namespace quillbay
