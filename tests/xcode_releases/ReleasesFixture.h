#pragma once

#include <memory>
#include <optional>

#include "FeedServer.h"
#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "xcode_releases/XcodeReleaseService.h"

namespace quillbay::test {

// A view model whose feed is a loopback server and whose cache is a temporary file. The
// start-up tasks are queued, so the swap happens before they run. A non-empty Info.plist
// installs an Xcode bundle the workspace reports.
struct Store
{
    TempTree tree;
    FeedServer server;
    QString cachePath = tree.path(QStringLiteral("Caches/xcodereleases.json"));
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    SerialExecutor<CacheManager> cache {std::make_unique<CacheManager>(cachePath)};
    std::unique_ptr<AppViewModel> model;
    RecordingWorkspace* workspace = nullptr;

    explicit Store(std::optional<QByteArray> cached,
                   int status,
                   const QByteArray& body,
                   const QByteArray& xcodeInfoPlist = {})
    {
        tree.mkdir(QStringLiteral("Caches"));
        std::optional<QString> xcodeBundle;
        if (!xcodeInfoPlist.isEmpty()) {
            tree.writeFile(QStringLiteral("Xcode.app/Contents/Info.plist"), xcodeInfoPlist);
            xcodeBundle = tree.path(QStringLiteral("Xcode.app"));
        }
        if (cached)
            tree.writeFile(QStringLiteral("Caches/xcodereleases.json"), *cached);
        server.answer(status, body);
        model = std::make_unique<AppViewModel>(defaults, saved);
        model->replaceXcodeReleaseService(XcodeReleaseService::createWithNetwork(server.feedURL(), cache));
        auto recorder = std::make_unique<RecordingWorkspace>(xcodeBundle);
        workspace = recorder.get();
        model->replaceWorkspace(std::move(recorder));
    }
};

} // namespace quillbay::test
