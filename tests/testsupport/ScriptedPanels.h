#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <deque>
#include <functional>
#include <optional>

#include "platform/Alerts.h"
#include "platform/Pickers.h"
#include "platform/Workspace.h"

namespace quillbay::test {

// Stands in for the user at a panel: each request takes the next scripted answer, which
// arrives later on the event loop as a real panel's would. Answers are queued on a context
// object the double owns, so an answer still pending when the double goes away is dropped
// instead of reaching freed memory.
//
// A folder request first takes the next step given to answerWith/cancelNext (a step may act
// on the disk before answering: the user creating a folder inside the panel); once those run
// out it takes the front of `answers`; with neither it cancels.
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
            const Step step = std::move(m_steps.front());
            m_steps.pop_front();
            result = step(request);
        } else if (!answers.empty()) {
            result = answers.front();
            answers.pop_front();
        }
        QMetaObject::invokeMethod(
            &m_context,
            [this, answer = std::move(answer), result] {
                answer(result);
                ++answered;
            },
            Qt::QueuedConnection);
    }

    void chooseSaveLocation(const SaveRequest& request, Answer answer) override
    {
        saveRequests.append(request);
        std::optional<QString> result;
        if (!saveAnswers.empty()) {
            result = saveAnswers.front();
            saveAnswers.pop_front();
        }
        QMetaObject::invokeMethod(
            &m_context,
            [this, answer = std::move(answer), result] {
                answer(result);
                ++saveAnswered;
            },
            Qt::QueuedConnection);
    }

    // Folder answers taken after the scripted steps; nullopt is a cancel.
    std::deque<std::optional<QString>> answers;
    QList<FolderRequest> requests;
    // Folder answers handed back so far; the answer is acted on before this moves.
    int answered = 0;

    // The save panel: answers in order (nullopt or none left is a cancel).
    std::deque<std::optional<QString>> saveAnswers;
    QList<SaveRequest> saveRequests;
    int saveAnswered = 0;

private:
    std::deque<Step> m_steps;
    QObject m_context;
};

// The user at an alert: presses the scripted button, or the last one (the cancel) when
// nothing is scripted.
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
            &m_context, [answer = std::move(answer), index] { answer(index); }, Qt::QueuedConnection);
    }

    QList<Request> requests;

private:
    std::deque<int> m_presses;
    QObject m_context;
};

// Stands in for the desktop, which cannot open a browser, a file manager or a terminal
// here: records every call and answers with what the test set up. Every identifier looks
// up the one application path it was given (Xcode, in the tests that need one).
class RecordingWorkspace final : public Workspace
{
public:
    explicit RecordingWorkspace(std::optional<QString> applicationPath = std::nullopt)
        : m_applicationPath(std::move(applicationPath))
    {
    }

    bool openUrl(const QUrl& url) override
    {
        openedUrls.append(url);
        return opensUrls;
    }
    bool revealFiles(const QStringList& paths) override
    {
        revealed.append(paths);
        return reveals;
    }
    std::optional<QString> applicationPath(const QString& identifier) override
    {
        askedIdentifiers.append(identifier);
        return m_applicationPath;
    }
    QStringList runningApplicationIdentifiers() override { return running; }
    bool openTerminal(const QString& folder) override
    {
        terminals.append(folder);
        return opensTerminals;
    }

    // What the calls answer.
    bool opensUrls = true;
    bool reveals = true;
    bool opensTerminals = false;
    QStringList running;

    // What was asked, in order.
    QList<QUrl> openedUrls;
    QList<QStringList> revealed;
    QStringList askedIdentifiers;
    QStringList terminals;

private:
    std::optional<QString> m_applicationPath;
};

} // namespace quillbay::test
