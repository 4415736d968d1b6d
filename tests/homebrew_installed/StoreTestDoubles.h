#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <deque>

#include "platform/Pickers.h"
#include "platform/Workspace.h"

namespace quillbay::test {

// The user at the folder panel: each request takes the next scripted answer, delivered
// later on the event loop as a real panel would.
class ScriptedPickers final : public Pickers
{
public:
    std::deque<std::optional<QString>> answers;
    QList<FolderRequest> folderRequests;

    void chooseFolder(const FolderRequest& request, Answer answer) override
    {
        folderRequests.append(request);
        std::optional<QString> next;
        if (!answers.empty()) {
            next = answers.front();
            answers.pop_front();
        }
        QTimer::singleShot(0, &m_context, [answer = std::move(answer), next] { answer(next); });
    }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override
    {
        QTimer::singleShot(0, &m_context, [answer = std::move(answer)] { answer(std::nullopt); });
    }

private:
    QObject m_context;
};

// The file manager, reduced to what it was asked to show.
class RecordingWorkspace final : public Workspace
{
public:
    QList<QStringList> revealed;

    bool openUrl(const QUrl&) override { return true; }
    bool revealFiles(const QStringList& paths) override
    {
        revealed.append(paths);
        return true;
    }
    std::optional<QString> applicationPath(const QString&) override { return std::nullopt; }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return true; }
};

} // namespace quillbay::test
