#pragma once

#include <QCoreApplication>
#include <QList>
#include <QStringList>
#include <deque>
#include <functional>

#include "platform/Alerts.h"
#include "platform/Pickers.h"
#include "platform/Workspace.h"

namespace quillbay::test {

// Stands in for the user at a panel: each request takes the next scripted answer, which
// arrives later on the event loop as a real panel's would. A script step may also act on
// the disk before answering (the user creating a folder inside the panel).
class ScriptedPickers final : public Pickers
{
public:
    using Step = std::function<std::optional<QString>(const FolderRequest&)>;

    void answerWith(std::optional<QString> folder)
    {
        m_steps.push_back([folder](const FolderRequest&) { return folder; });
    }
    void answerWith(Step step) { m_steps.push_back(std::move(step)); }
    // The user closes the panel without choosing.
    void cancelNext()
    {
        m_steps.push_back([](const FolderRequest&) -> std::optional<QString> { return std::nullopt; });
    }

    void chooseFolder(const FolderRequest& request, Answer answer) override
    {
        requests.append(request);
        std::optional<QString> result;
        if (!m_steps.empty()) {
            result = m_steps.front()(request);
            m_steps.pop_front();
        }
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [this, answer, result] {
                answer(result);
                ++answered;
            },
            Qt::QueuedConnection);
    }

    void chooseSaveLocation(const SaveRequest&, Answer answer) override
    {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [answer] { answer(std::nullopt); }, Qt::QueuedConnection);
    }

    QList<FolderRequest> requests;
    // Answers handed back so far; the answer is acted on before this moves.
    int answered = 0;

private:
    std::deque<Step> m_steps;
};

class ScriptedAlerts final : public Alerts
{
public:
    void pressButton(int index) { m_presses.push_back(index); }

    void show(const Request& request, Answer answer) override
    {
        requests.append(request);
        const int index = m_presses.empty() ? int(request.buttons.size()) - 1 : m_presses.front();
        if (!m_presses.empty())
            m_presses.pop_front();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [answer, index] { answer(index); }, Qt::QueuedConnection);
    }

    QList<Request> requests;

private:
    std::deque<int> m_presses;
};

// A desktop on which the listed applications run and every reveal is recorded.
class RecordingWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl& url) override
    {
        openedUrls.append(url);
        return true;
    }
    bool revealFiles(const QStringList& paths) override
    {
        revealed.append(paths);
        return true;
    }
    std::optional<QString> applicationPath(const QString&) override { return std::nullopt; }
    QStringList runningApplicationIdentifiers() override { return running; }
    bool openTerminal(const QString&) override { return false; }

    QStringList running;
    QList<QUrl> openedUrls;
    QList<QStringList> revealed;
};

} // namespace quillbay::test
