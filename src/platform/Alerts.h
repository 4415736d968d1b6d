#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace quillbay {

// A modal alert with a message, an informative text and buttons. The answer (the index
// of the button pressed, first button 0) arrives through a callback on the UI thread, so
// a store waits for the user without blocking or nesting an event loop. Widgets implement
// it with message boxes; tests script the answer.
class Alerts
{
public:
    using Answer = std::function<void(int buttonIndex)>;

    enum class Style {
        informational,
        warning,
        critical,
    };

    struct Request
    {
        QString messageText;
        QString informativeText;
        QStringList buttons;
        Style style = Style::informational;
    };

    virtual ~Alerts() = default;

    virtual void show(const Request& request, Answer answer) = 0;
};

} // namespace quillbay
