#pragma once

#include <QDateTime>
#include <QUrl>
#include <memory>

#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledCatalogLink.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "tests/homebrew_catalog/CatalogServiceFixture.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

namespace quillbay::test {

// The installed tool as the application builds it, against a catalog service on loopback
// and a Homebrew root made of real folders: bin/brew, Cellar/<name>/<version>,
// Caskroom/<token>/<version>. Only the folder panel and the file manager are scripted.
class InstalledScreenFixture
{
public:
    InstalledScreenFixture()
    {
        m_tree.mkdir(QStringLiteral("home"));
        m_tree.writeFile(QStringLiteral("brew/bin/brew"), "#!/bin/sh\n");
        defaults = std::make_unique<SettingsDefaults>(m_tree.path(QStringLiteral("defaults.ini")));
    }

    ~InstalledScreenFixture()
    {
        if (catalog)
            waitUntil([this] { return catalogIdle(); });
    }

    // The catalog on the service: curl's revision makes its version 8.5.0_1.
    void publishCatalog()
    {
        service.publish(
            QStringLiteral("s1"),
            {{QStringLiteral("wget"), QStringLiteral("Internet file retriever"), QStringLiteral("1.25.0")},
             {QStringLiteral("curl"), QStringLiteral("Get a file from an HTTP server"), QStringLiteral("8.5.0"), 1},
             {QStringLiteral("jq"), QStringLiteral("Lightweight JSON processor"), QStringLiteral("1.7.1")}},
            {{QStringLiteral("firefox"), QStringLiteral("Mozilla Firefox"), QStringLiteral("Web browser"),
              QStringLiteral("129.0")},
             {QStringLiteral("iterm2"), QStringLiteral("iTerm2"), QStringLiteral("Terminal emulator"),
              QStringLiteral("3.5.4")}});
    }

    void install(const QString& relative) { m_tree.mkdir(QStringLiteral("brew/") + relative); }
    // A machine with formulae up to date, behind, and unknown to the catalog, and a cask.
    void installUsualPackages()
    {
        install(QStringLiteral("Cellar/wget/1.25.0"));
        install(QStringLiteral("Cellar/curl/8.5.0"));
        install(QStringLiteral("Cellar/localtool/0.1"));
        install(QStringLiteral("Caskroom/firefox/128.0"));
    }

    QString root() const { return m_tree.path(QStringLiteral("brew")); }
    TempTree& tree() { return m_tree; }

    // A new launch: stores built afresh on the same settings file and caches.
    void launch()
    {
        // The catalog store cannot yet be destroyed while a refresh is in flight (its API
        // client's pending continuations outlive it), so a launch ends with it at rest.
        if (catalog)
            waitUntil([this] { return catalogIdle(); });
        installed.reset();
        catalog.reset();
        HomebrewAPIClient::Configuration configuration;
        configuration.baseURL = QUrl(service.baseURL());
        configuration.signingSecret = QByteArray("quillbay-development-catalog-signing-key-0123456789abcdef0123456");
        configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
        configuration.currentDate = [] { return QDateTime::currentDateTimeUtc(); };
        catalog = std::make_unique<HomebrewCatalogStore>(
            std::make_unique<HomebrewAPIClient>(
                configuration, std::make_unique<HomebrewCacheService>(m_tree.path(QStringLiteral("home/cache")))),
            HomebrewCatalogProcessor(), *defaults);
        installed = std::make_unique<HomebrewInstalledPackagesStore>(
            *defaults, QLatin1String(HomebrewInstalledPackagesStore::rootBookmarkKey),
            std::make_unique<HomebrewInstallationBookmarkService>(), std::make_unique<HomebrewInstallationScanner>(),
            std::make_unique<HomebrewInstalledPackageProcessor>(), pickers, workspace,
            UserPaths::forHome(m_tree.path(QStringLiteral("home"))));
        followCatalog(*installed, *catalog);
    }

    bool catalogIdle() const
    {
        return catalog->hasLoaded() && !catalog->hasLoadTask() && !catalog->isRefreshing() && !catalog->isFiltering();
    }
    bool installedIdle() const
    {
        return !installed->isScanning() && !installed->isLoadingAuthorization() && !installed->isChoosingRoot()
            && !installed->isFiltering();
    }

private:
    TempTree m_tree;

public:
    CatalogServiceFixture service;
    std::unique_ptr<SettingsDefaults> defaults;
    ScriptedPickers pickers;
    RecordingWorkspace workspace;
    std::unique_ptr<HomebrewCatalogStore> catalog;
    std::unique_ptr<HomebrewInstalledPackagesStore> installed;
};

} // namespace quillbay::test
