#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeView>

#include <unistd.h>

#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "homebrew_cache/views/HomebrewCacheCleanupView.h"
#include "homebrew_cache/views/HomebrewCacheOutlineModel.h"
#include "homebrew_cache/views/HomebrewCacheSettingsSection.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

namespace {

const QString kCache = QStringLiteral("home/.cache/Homebrew/");

void download(test::TempTree& tree, const QString& link, const QString& hash, qint64 bytes, bool cask = false)
{
    const QString name = hash + QStringLiteral("--") + link;
    tree.writeSizedFile(kCache + QStringLiteral("downloads/") + name, bytes);
    tree.symlink(kCache + (cask ? QStringLiteral("Cask/") : QString()) + link,
                 (cask ? QStringLiteral("../downloads/") : QStringLiteral("downloads/")) + name);
}

// A cache as a developer's machine has it: several versions of a few formulae with their
// manifests, two casks, a download two versions share, strays and the api folder.
void fillCache(test::TempTree& tree)
{
    download(tree, QStringLiteral("wget--1.24.5.arm64_sonoma.bottle.tar.gz"), QStringLiteral("a1"), 1500000);
    download(tree, QStringLiteral("wget_bottle_manifest--1.24.5.bottle_manifest.json"), QStringLiteral("a2"), 12000);
    download(tree, QStringLiteral("wget--1.21.4.arm64_sonoma.bottle.tar.gz"), QStringLiteral("a3"), 1420000);
    download(tree, QStringLiteral("node--22.9.0.arm64_sonoma.bottle.tar.gz"), QStringLiteral("b1"), 24800000);
    download(tree, QStringLiteral("node--22.10.0.arm64_sonoma.bottle.tar.gz"), QStringLiteral("b2"), 25100000);
    download(tree, QStringLiteral("python@3.12--3.12.7.arm64_sonoma.bottle.tar.gz"), QStringLiteral("c1"), 16900000);
    download(tree, QStringLiteral("git--2.47.0.arm64_sonoma.bottle.tar.gz.incomplete"), QStringLiteral("d1"), 3100000);
    download(tree, QStringLiteral("firefox--131.0.dmg"), QStringLiteral("e1"), 138000000, true);
    download(tree, QStringLiteral("visual-studio-code--1.94.2.zip"), QStringLiteral("e2"), 129000000, true);
    tree.writeSizedFile(kCache + QStringLiteral("downloads/f1--libpng.tar.xz"), 1100000);
    tree.symlink(kCache + QStringLiteral("libpng--1.6.43.tar.xz"), QStringLiteral("downloads/f1--libpng.tar.xz"));
    tree.symlink(kCache + QStringLiteral("libpng--1.6.44.tar.xz"), QStringLiteral("downloads/f1--libpng.tar.xz"));
    tree.writeSizedFile(kCache + QStringLiteral("downloads/9f8e7d--old-tool.tar.gz"), 640000);
    tree.writeSizedFile(kCache + QStringLiteral("api/formula.jws.json"), 30500000);
    tree.writeSizedFile(kCache + QStringLiteral("api/cask.jws.json"), 12700000);
    tree.writeSizedFile(kCache + QStringLiteral("bootsnap/16e4b77f/compile-cache"), 2200000);
    tree.writeSizedFile(kCache + QStringLiteral(".cleaned"), 0);
}

struct Scene
{
    test::TempTree tree;
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore savedSpace {defaults, QStringLiteral("TotalBytesDeleted")};
    test::ScriptedPickers pickers;
    HomebrewCacheCleanupStore store {HomebrewCacheCleanupServices {
        defaults, savedSpace, pickers, UserPaths::forHome(tree.path(QStringLiteral("home"))), {}}};
    HomebrewCacheCleanupView view {store};

    Scene()
    {
        view.resize(900, 620);
        view.show();
    }
    QString root() const { return tree.path(kCache.chopped(1)); }
    void authorize()
    {
        pickers.answers.push_back(root());
        store.chooseRoot();
        test::waitUntil([this] { return !store.isChoosingRoot() && store.hasScannedThisLaunch(); });
        view.outlineView()->expandAll();
    }
    // For states that last only while work runs: painted now, without letting it finish.
    void grabNow(const QString& outDir, const QString& name)
    {
        view.grab().save(QDir(outDir).filePath(name + QStringLiteral(".png")));
    }
};

} // namespace

void renderHomebrewCacheScreenshots(const QString& outDir)
{
    {
        Scene scene;
        test::waitUntil([&] { return scene.store.hasLoadedAuthorization(); });
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-1-authorization"));
        scene.pickers.answers.push_back(scene.tree.mkdir(QStringLiteral("home/Downloads")));
        scene.store.chooseRoot();
        test::waitUntil([&] { return !scene.store.isChoosingRoot() && scene.store.errorMessage(); });
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-1-authorization-error"));
    }
    {
        Scene scene;
        fillCache(scene.tree);
        scene.authorize();
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-5-outline"));
        HomebrewCacheOutlineModel& model = *scene.view.outlineModel();
        model.setData(model.indexOfNode(QStringLiteral("package-node:formula:node")), Qt::Unchecked,
                      Qt::CheckStateRole);
        model.setData(model.indexOfNode(QStringLiteral("entry-node:package:formula:wget:1.21.4")), Qt::Unchecked,
                      Qt::CheckStateRole);
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-5-outline-partial"));

        scene.view.findChild<QPushButton*>(QStringLiteral("deletePushButton"))->click();
        test::waitUntil([&] { return scene.view.confirmation() && scene.view.confirmation()->isVisible(); });
        if (QMessageBox* box = scene.view.confirmation()) {
            save(box, outDir, QStringLiteral("homebrew-cache-confirmation"));
            box->reject();
        }

        scene.store.rescan();
        scene.grabNow(outDir, QStringLiteral("homebrew-cache-2-scanning"));
        test::waitUntil([&] { return !scene.store.isScanning(); });
        scene.view.outlineView()->expandAll();
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-toast-completed"));

        scene.store.deselectAll();
        scene.store.setSelected(QStringLiteral("package:formula:wget:1.21.4"), true);
        scene.store.clean();
        scene.grabNow(outDir, QStringLiteral("homebrew-cache-cleaning"));
        test::waitUntil([&] { return !scene.store.isCleaning(); });
        scene.view.outlineView()->expandAll();
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-toast-cleaned"));

        HomebrewCacheSettingsSection section(scene.store);
        section.resize(520, 220);
        save(&section, outDir, QStringLiteral("homebrew-cache-settings-authorized"));
        scene.store.removeAuthorization();
        save(&section, outDir, QStringLiteral("homebrew-cache-settings-not-selected"));
    }
    {
        Scene scene;
        scene.tree.mkdir(kCache);
        scene.authorize();
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-4-empty"));
        // The folder turns into a link: the rescan fails.
        const QString moved = scene.tree.path(QStringLiteral("home/moved"));
        QDir().rename(scene.root(), moved);
        ::symlink(QFile::encodeName(moved).constData(), QFile::encodeName(scene.root()).constData());
        scene.store.rescan();
        test::waitUntil([&] { return !scene.store.isScanning(); });
        save(&scene.view, outDir, QStringLiteral("homebrew-cache-3-failed"));
    }
}

} // namespace quillbay::screenshots
