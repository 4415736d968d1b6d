#pragma once

#include <QStringList>
#include <QTimer>
#include <deque>
#include <optional>

#include "platform/Pickers.h"

namespace quillbay::test {

// The user at the folder panel: each request takes the next scripted answer (a path or a
// cancel), delivered from the event loop as a real panel would.
class ScriptedPickers final : public Pickers
{
public:
    std::deque<std::optional<QString>> answers;
    std::vector<FolderRequest> requests;

    void chooseFolder(const FolderRequest& request, Answer answer) override
    {
        requests.push_back(request);
        std::optional<QString> next;
        if (!answers.empty()) {
            next = answers.front();
            answers.pop_front();
        }
        QTimer::singleShot(0, [answer = std::move(answer), next] { answer(next); });
    }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override
    {
        QTimer::singleShot(0, [answer = std::move(answer)] { answer(std::nullopt); });
    }
};

} // namespace quillbay::test
