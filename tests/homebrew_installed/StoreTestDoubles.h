#pragma once

#include <QObject>
#include <QSemaphore>
#include <QStringList>
#include <QTimer>
#include <atomic>
#include <deque>
#include <memory>

#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"
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

// The real processor, with a gate in front: each call waits for a permit, so a test can
// change the store while a call is provably still running.
class GatedProcessor final : public HomebrewInstalledPackageProcessor
{
public:
    struct Control
    {
        QSemaphore gate;
        std::atomic<int> started {0};
    };

    explicit GatedProcessor(std::shared_ptr<Control> control)
        : m_control(std::move(control))
    {
    }

    HomebrewInstalledPackageLists process(const QList<HomebrewInstalledPackage>& rawPackages,
                                          const HomebrewPackageSummaries& catalogSummaries,
                                          const QString& searchText,
                                          std::stop_token stopToken) const override
    {
        ++m_control->started;
        m_control->gate.acquire();
        return HomebrewInstalledPackageProcessor::process(rawPackages, catalogSummaries, searchText, stopToken);
    }

private:
    std::shared_ptr<Control> m_control;
};

} // namespace quillbay::test
