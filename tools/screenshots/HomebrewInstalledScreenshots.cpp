#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>

#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesView.h"
#include "homebrew_installed/views/HomebrewInstalledSettingsSection.h"
#include "tests/homebrew_installed/InstalledScreenFixture.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

namespace {

struct Scene : test::InstalledScreenFixture
{
    std::unique_ptr<HomebrewInstalledPackagesView> view;

    explicit Scene(bool withPackages = true)
    {
        publishCatalog();
        if (withPackages) {
            installUsualPackages();
            install(QStringLiteral("Cellar/wget/1.24.5"));
            install(QStringLiteral("Cellar/python@3.12/3.12.7"));
            install(QStringLiteral("Caskroom/visual-studio-code/1.94.2"));
            install(QStringLiteral("Caskroom/iterm2/3.5.4"));
        }
        launch();
        show();
    }
    void show()
    {
        view = std::make_unique<HomebrewInstalledPackagesView>(*installed, *catalog);
        view->resize(900, 560);
        view->show();
        test::waitUntil([this] { return installed->hasLoadedAuthorization(); });
    }
    void authorize()
    {
        pickers.answers.push_back(root());
        installed->chooseRoot();
        test::waitUntil([this] { return installed->hasScannedThisLaunch() && installedIdle() && catalogIdle(); });
        test::waitUntil([this] { return installed->casks().value(0).catalogSummary.has_value(); });
    }
    void grabNow(const QString& outDir, const QString& name)
    {
        view->grab().save(QDir(outDir).filePath(name + QStringLiteral(".png")));
    }
};

} // namespace

void renderHomebrewInstalledScreenshots(const QString& outDir)
{
    {
        Scene scene;
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-1-authorization"));
        scene.authorize();
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-7-table-casks"));
        scene.installed->setSelectedKind(HomebrewCatalogKind::formula);
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-7-table-formulae"));

        auto* search = scene.view->findChild<QLineEdit*>(QStringLiteral("searchLineEdit"));
        search->setText(QStringLiteral("http"));
        scene.grabNow(outDir, QStringLiteral("homebrew-installed-4-searching"));
        test::waitUntil([&] { return !scene.installed->isFiltering(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-7-table-search"));
        search->setText(QStringLiteral("nothing like this"));
        test::waitUntil([&] { return !scene.installed->isFiltering(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-5-no-search-results"));
        search->clear();
        test::waitUntil([&] { return scene.installed->formulae().size() == 5; });

        // A package page with the local sections, a copied command and a failed action.
        scene.view->openPackage(scene.installed->formulae()[0]);
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-package-page"));
        scene.view->currentPackagePage()
            ->findChild<QPushButton*>(QStringLiteral("copyUpgradeCommandPushButton"))
            ->click();
        HomebrewInstalledPackage outside = scene.installed->formulae()[1];
        outside.installationURL = scene.tree().mkdir(QStringLiteral("elsewhere/0.1"));
        scene.view->goBack();
        scene.view->openPackage(outside);
        scene.view->currentPackagePage()->findChild<QToolButton*>(QStringLiteral("showInFinderToolButton"))->click();
        test::waitUntil([&] { return scene.installed->operationErrorMessage().has_value(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-package-page-action-failed"));
        scene.view->goBack();

        // A rescan that fails keeps the table under the error line.
        QFile::remove(scene.root() + QStringLiteral("/bin/brew"));
        scene.installed->rescan();
        test::waitUntil([&] { return scene.installedIdle(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-7-table-error-line"));

        HomebrewInstalledSettingsSection section(*scene.installed);
        section.resize(520, 180);
        save(&section, outDir, QStringLiteral("homebrew-installed-settings-authorized"));
        scene.installed->removeAuthorization();
        save(&section, outDir, QStringLiteral("homebrew-installed-settings-not-selected"));
    }
    {
        // The next launch: the restored root is scanned (state 2) and, without bin/brew,
        // fails (state 3).
        Scene scene;
        scene.authorize();
        scene.view.reset();
        QFile::remove(scene.root() + QStringLiteral("/bin/brew"));
        scene.launch();
        scene.view = std::make_unique<HomebrewInstalledPackagesView>(*scene.installed, *scene.catalog);
        scene.view->resize(900, 560);
        scene.view->show();
        test::waitUntil([&] { return scene.installed->isScanning(); });
        scene.grabNow(outDir, QStringLiteral("homebrew-installed-2-scanning"));
        test::waitUntil([&] { return scene.installedIdle() && scene.installed->hasLoadedAuthorization(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-3-failed"));
    }
    {
        Scene scene(false);
        scene.install(QStringLiteral("Cellar/wget/1.25.0"));
        scene.pickers.answers.push_back(scene.root());
        scene.installed->chooseRoot();
        test::waitUntil([&] { return scene.installed->hasScannedThisLaunch() && scene.installedIdle(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-6-no-casks"));
        QDir(scene.root() + QStringLiteral("/Cellar")).removeRecursively();
        scene.installed->setSelectedKind(HomebrewCatalogKind::formula);
        scene.installed->rescan();
        test::waitUntil([&] { return scene.installedIdle(); });
        save(scene.view.get(), outDir, QStringLiteral("homebrew-installed-6-no-formulae"));
    }
}

} // namespace quillbay::screenshots
