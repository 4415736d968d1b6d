#include <QDir>
#include <QTabWidget>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/state/SavedSpaceStore.h"
#include "core/state/URLBookmarkManager.h"
#include "core/views/SettingsView.h"
#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/FolderBookmark.h"
#include "platform/UserPaths.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

namespace {

URLBookmark folderEntry(const QString& path)
{
    URLBookmark entry;
    entry.urlString = path;
    entry.bookmarkData = FolderBookmark::make(path);
    return entry;
}

} // namespace

void renderSettingsScreenshots(const QString& outDir)
{
    test::TempTree tree;
    const UserPaths paths = UserPaths::forHome(tree.path(QStringLiteral("home")));
    tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
    const QString brew = tree.mkdir(QStringLiteral("home/.linuxbrew"));
    tree.writeFile(QStringLiteral("home/.linuxbrew/bin/brew"), "#!/bin/sh\n");
    tree.mkdir(QStringLiteral("home/.linuxbrew/Cellar/wget/1.24.5"));
    tree.mkdir(QStringLiteral("home/.linuxbrew/Caskroom"));
    // One custom folder of each kind, and one that has gone away since it was added.
    const URLBookmarkManager bookmarks(paths.programDataFolder());
    const QString builds = tree.mkdir(QStringLiteral("home/Builds/DerivedData"));
    const QString gone = tree.mkdir(QStringLiteral("home/External/DerivedData"));
    const QString archives = tree.mkdir(QStringLiteral("home/Shipping/Archives"));
    bookmarks.save({folderEntry(builds), folderEntry(gone)}, URLBookmarkManager::File::customDerivedData);
    bookmarks.save({folderEntry(archives)}, URLBookmarkManager::File::customArchives);
    QDir(tree.path(QStringLiteral("home/External"))).removeRecursively();

    // The Developer folder was authorized in an earlier run.
    auto defaults = std::make_unique<SettingsDefaults>(tree.path(QStringLiteral("defaults.ini")));
    defaults->setValue(QLatin1String(AppViewModel::developerFolderBookmarkKey),
                       FolderBookmark::make(tree.path(QStringLiteral("home/Library/Developer"))));
    QuillbayApp app(std::move(defaults));
    app.viewModel().setCleanupPlatform(paths, nullptr);
    app.savedSpaceStore().add(48'318'382'080);

    SettingsView view(app);
    view.show();
    // The catalog service of the development build is not running: the refresh fails and
    // the tab shows its error beside the check date.
    test::waitUntil(
        [&] {
            const HomebrewCatalogStore& catalog = app.homebrewCatalogStore();
            return catalog.hasLoaded() && !catalog.hasLoadTask() && !catalog.isRefreshing();
        },
        15000);
    app.homebrewInstalledPackagesStore().authorize(brew);
    test::waitUntil([&] { return app.homebrewInstalledPackagesStore().isAuthorized(); });

    const std::pair<qint64, const char*> appearances[] = {{1, "light"}, {2, "dark"}};
    const char* tabs[] = {"general", "xcode", "homebrew"};
    for (const auto& [index, appearance] : appearances) {
        app.viewModel().setAppearanceIndex(index);
        AppViewModel::applyAppearance(index);
        for (int tab = 0; tab < 3; ++tab) {
            view.tabs()->setCurrentIndex(tab);
            save(&view, outDir,
                 QStringLiteral("settings-%1-%2").arg(QLatin1String(tabs[tab]), QLatin1String(appearance)));
        }
    }
    app.viewModel().setAppearanceIndex(0);
    AppViewModel::applyAppearance(0);
}

} // namespace quillbay::screenshots
