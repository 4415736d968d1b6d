#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace quillbay {

// The open and save panels. The answer arrives through a callback on the UI thread, so
// a store awaits the user without blocking or nesting an event loop. Widgets implement
// it with file dialogs; tests script the user's answer.
class Pickers
{
public:
    using Answer = std::function<void(std::optional<QString>)>;

    struct FolderRequest
    {
        QString directory; // the folder the panel opens in (and, where asked, expects)
        QString message;
        QString prompt;
    };

    struct SaveRequest
    {
        QString directory;
        QString suggestedName;
        QString message;
        QString prompt;
        QString title; // the panel's title; empty keeps the toolkit's
        QString nameFieldLabel; // the label of the name field; empty keeps the toolkit's
    };

    virtual ~Pickers() = default;

    virtual void chooseFolder(const FolderRequest& request, Answer answer) = 0;
    virtual void chooseSaveLocation(const SaveRequest& request, Answer answer) = 0;
};

} // namespace quillbay
