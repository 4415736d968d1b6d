#include <QAbstractButton>
#include <QCheckBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>
#include <functional>

#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewCatalogColumnsPanel.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/Pickers.h"
#include "platform/Workspace.h"
#include "testsupport/TestEnvironment.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

using namespace Qt::StringLiterals;

namespace {

// The packages of a real machine (`brew info --json=v2 --installed`), with the install
// counts of the real analytics where the package is in the top hundred, plus one invented
// disabled formula to show the status badge and section.
struct RealCatalog
{
    QJsonArray formulaDocuments;
    QJsonArray caskDocuments;
    QHash<QString, qint64> installs;

    RealCatalog()
    {
        const QString dir = test::sharedDataDir() + u"/homebrew/"_s;
        QFile info(dir + u"api/brew-info-json-v2-installed.json"_s);
        info.open(QIODevice::ReadOnly);
        const QJsonObject installed = QJsonDocument::fromJson(info.readAll()).object();
        formulaDocuments = installed[u"formulae"_s].toArray();
        caskDocuments = installed[u"casks"_s].toArray();
        formulaDocuments.append(QJsonObject {
            {u"name"_s, u"legacy-tool"_s},
            {u"desc"_s, u"Invented package that shows a disabled formula"_s},
            {u"versions"_s, QJsonObject {{u"stable"_s, u"0.9.1"_s}}},
            {u"revision"_s, 2},
            {u"disabled"_s, true},
            {u"disable_reason"_s, u"does not build"_s},
            {u"disable_replacement_formula"_s, u"ruby"_s},
            {u"conflicts_with"_s, QJsonArray {u"ruby"_s}},
        });
        for (const QString& file :
             {u"install-30d.2021-07-10.top100.json"_s, u"cask-install-30d.2021-07-10.top100.json"_s}) {
            QFile analytics(dir + u"analytics/"_s + file);
            analytics.open(QIODevice::ReadOnly);
            for (const QJsonValue item : QJsonDocument::fromJson(analytics.readAll()).object()[u"items"_s].toArray()) {
                const QJsonObject row = item.toObject();
                const QString name
                    = row.contains(u"formula"_s) ? row[u"formula"_s].toString() : row[u"cask"_s].toString();
                installs.insert(name, row[u"count"_s].toString().remove(u',').toLongLong());
            }
        }
    }

    QByteArray snapshot(HomebrewCatalogKind kind) const
    {
        QJsonArray rows;
        const bool formula = kind == HomebrewCatalogKind::formula;
        for (const QJsonValue value : formula ? formulaDocuments : caskDocuments) {
            const QJsonObject doc = value.toObject();
            const QString id = doc[formula ? u"name"_s : u"token"_s].toString();
            const QString display = formula ? id : doc[u"name"_s].toArray().first().toString();
            QJsonObject analytics;
            if (installs.contains(id)) {
                analytics[u"thirtyDays"_s] = installs.value(id);
                analytics[u"ninetyDays"_s] = installs.value(id) * 3 - 1234;
            }
            rows.append(QJsonObject {
                {u"identifier"_s, id},
                {u"displayName"_s, display},
                {u"aliases"_s, QJsonArray {}},
                {u"summary"_s, doc[u"desc"_s].toString()},
                {u"version"_s,
                 formula ? doc[u"versions"_s].toObject()[u"stable"_s].toString() : doc[u"version"_s].toString()},
                {u"analytics"_s, analytics},
                {u"isDeprecated"_s, doc[u"deprecated"_s].toBool()},
                {u"isDisabled"_s, doc[u"disabled"_s].toBool()},
            });
        }
        return QJsonDocument(QJsonObject {{u"schemaVersion"_s, 1}, {u"kind"_s, rawValue(kind)}, {u"packages"_s, rows}})
            .toJson(QJsonDocument::Compact);
    }
};

QString snapshotPath(HomebrewCatalogKind kind)
{
    return u"/v1/catalog/snapshots/shots/"_s + rawValue(kind) + u".json"_s;
}

// A response cache as a completed refresh leaves it, with every detail document cached.
void writeCache(const QString& root, const RealCatalog& catalog, const QDateTime& checkedAt)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    HomebrewCacheService cache(root);
    cache.ensureRoot();
    QJsonObject manifest {
        {u"schemaVersion"_s, 1},
        {u"snapshotID"_s, u"shots"_s},
        {u"generatedAt"_s, u"2025-08-08T00:00:00Z"_s},
        {u"source"_s, QJsonObject {{u"name"_s, u"shots"_s}, {u"url"_s, u"https://example.invalid/"_s}}}};
    QList<HomebrewEndpoint> snapshots;
    for (HomebrewCatalogKind kind : {HomebrewCatalogKind::formula, HomebrewCatalogKind::cask}) {
        const QByteArray bytes = catalog.snapshot(kind);
        const auto endpoint = HomebrewEndpoint::catalogSnapshot(kind, snapshotPath(kind));
        cache.store(endpoint, bytes, {now, {}, {}});
        snapshots << endpoint;
        const qsizetype count
            = kind == HomebrewCatalogKind::formula ? catalog.formulaDocuments.size() : catalog.caskDocuments.size();
        manifest[rawValue(kind)] = QJsonObject {{u"path"_s, snapshotPath(kind)},
                                                {u"sha256"_s, HomebrewCatalogProcessor::sha256Hex(bytes)},
                                                {u"byteCount"_s, bytes.size()},
                                                {u"packageCount"_s, count}};
    }
    cache.storeValidatedManifest(QJsonDocument(manifest).toJson(QJsonDocument::Compact), snapshots);
    cache.recordCheck(checkedAt);
    for (const QJsonValue doc : catalog.formulaDocuments)
        cache.store(HomebrewEndpoint::formulaDetail(doc[u"name"_s].toString()),
                    QJsonDocument(doc.toObject()).toJson(QJsonDocument::Compact), {now, {}, {}});
    for (const QJsonValue doc : catalog.caskDocuments)
        cache.store(HomebrewEndpoint::caskDetail(doc[u"token"_s].toString()),
                    QJsonDocument(doc.toObject()).toJson(QJsonDocument::Compact), {now, {}, {}});
}

class QuietWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl&) override { return true; }
    bool revealFiles(const QStringList&) override { return true; }
    std::optional<QString> applicationPath(const QString&) override { return std::nullopt; }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return false; }
};

class NoPickers final : public Pickers
{
public:
    void chooseFolder(const FolderRequest&, Answer answer) override { answer(std::nullopt); }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override { answer(std::nullopt); }
};

struct Scene
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"defaults.ini"_s)};
    QuietWorkspace workspace;
    std::unique_ptr<HomebrewCatalogStore> store;

    // With a catalog the cache is filled first; the service address is never reachable.
    Scene(const RealCatalog* catalog, const QDateTime& checkedAt = QDateTime::currentDateTimeUtc())
    {
        if (catalog)
            writeCache(dir.filePath(u"cache"_s), *catalog, checkedAt);
        HomebrewAPIClient::Configuration configuration;
        configuration.baseURL = QUrl(u"http://127.0.0.1:1"_s);
        configuration.signingSecret = "screenshots";
        store = std::make_unique<HomebrewCatalogStore>(
            std::make_unique<HomebrewAPIClient>(configuration,
                                                std::make_unique<HomebrewCacheService>(dir.filePath(u"cache"_s))),
            HomebrewCatalogProcessor(), defaults);
    }
    void load()
    {
        store->loadIfNeeded();
        test::waitUntil([this] { return store->hasLoaded() && !store->hasLoadTask(); });
    }
};

void settle(const std::function<bool()>& done)
{
    test::waitUntil(done, 5000);
    QCoreApplication::processEvents();
}

void renderCatalog(const QString& outDir, const RealCatalog& catalog)
{
    {
        Scene scene(nullptr);
        HomebrewCatalogView view(*scene.store, scene.workspace);
        view.resize(1000, 620);
        view.show();
        settle([&] { return scene.store->hasLoaded() && !scene.store->hasLoadTask(); });
        save(&view, outDir, u"homebrew-catalog-unavailable"_s);
        view.findChild<QPushButton*>(u"tryAgainPushButton"_s)->click();
        save(&view, outDir, u"homebrew-catalog-loading"_s);
    }
    Scene scene(&catalog);
    scene.load();
    HomebrewCatalogView view(*scene.store, scene.workspace);
    view.resize(1000, 620);
    view.show();
    settle([&] { return scene.store->catalogGeneration() > 0; });
    save(&view, outDir, u"homebrew-catalog-casks"_s);
    scene.store->setSelectedKind(HomebrewCatalogKind::formula);
    for (HomebrewCatalogColumn column : allCatalogColumns)
        scene.store->setColumnIsVisible(column, true);
    save(&view, outDir, u"homebrew-catalog-formulae-all-columns"_s);

    auto* field = view.findChild<QLineEdit*>(u"searchLineEdit"_s);
    QTest::keyClicks(field, u"lib"_s);
    save(&view, outDir, u"homebrew-catalog-searching"_s);
    settle([&] { return !scene.store->isFiltering(); });
    save(&view, outDir, u"homebrew-catalog-search-results"_s);
    QTest::keyClick(field, Qt::Key_Return);
    scene.store->setSelectedKind(HomebrewCatalogKind::cask);
    save(&view, outDir, u"homebrew-catalog-search-no-results"_s);
    field->clear();
    scene.store->setSelectedKind(HomebrewCatalogKind::formula);

    view.sortMenu()->popup(view.mapToGlobal(QPoint(700, 40)));
    save(view.sortMenu(), outDir, u"homebrew-catalog-sort-menu"_s);
    view.sortMenu()->hide();
    view.searchHistoryMenu()->popup(view.mapToGlobal(QPoint(900, 40)));
    save(view.searchHistoryMenu(), outDir, u"homebrew-catalog-search-history-menu"_s);
    view.searchHistoryMenu()->hide();
    view.columnsPanel()->toggleBelow(view.findChild<QAbstractButton*>(u"columnsToolButton"_s));
    save(view.columnsPanel(), outDir, u"homebrew-catalog-columns-panel"_s);
    view.columnsPanel()->hide();

    // A refresh that failed over a catalog on show: the line above the table.
    Scene stale(&catalog, QDateTime::currentDateTimeUtc().addDays(-3));
    HomebrewCatalogView staleView(*stale.store, stale.workspace);
    staleView.resize(1000, 420);
    staleView.show();
    settle([&] { return stale.store->refreshErrorMessage().has_value() && !stale.store->hasLoadTask(); });
    save(&staleView, outDir, u"homebrew-catalog-refresh-failed"_s);
}

void renderDetail(const QString& outDir, const RealCatalog& catalog)
{
    Scene scene(&catalog);
    scene.load();
    const auto page = [&](HomebrewCatalogKind kind, const QString& id, const QString& name, int height) {
        const HomebrewPackageRoute route {kind, id};
        HomebrewPackageDetailView view(*scene.store, scene.workspace, route);
        view.resize(760, height);
        view.show();
        settle([&] { return scene.store->detail(route) && !scene.store->detailLoadingRoutes().contains(route); });
        save(&view, outDir, name);
    };
    page(HomebrewCatalogKind::formula, u"ruby"_s, u"homebrew-package-formula"_s, 900);
    page(HomebrewCatalogKind::cask, u"visual-studio-code"_s, u"homebrew-package-cask"_s, 760);
    page(HomebrewCatalogKind::formula, u"legacy-tool"_s, u"homebrew-package-disabled"_s, 900);

    {
        const HomebrewPackageRoute route {HomebrewCatalogKind::formula, u"unbound"_s};
        HomebrewPackageDetailView view(*scene.store, scene.workspace, route);
        view.resize(760, 900);
        view.show();
        settle([&] { return scene.store->detail(route) && !scene.store->detailLoadingRoutes().contains(route); });
        view.findChild<QPushButton*>(u"copyInstallCommandPushButton"_s)->click();
        save(&view, outDir, u"homebrew-package-copied"_s);
        view.findChild<QAbstractButton*>(u"terminalToolButton"_s)->click();
        if (auto* alert = view.findChild<QMessageBox*>(u"terminalLaunchErrorMessageBox"_s)) {
            save(alert, outDir, u"homebrew-package-terminal-alert"_s);
            alert->close();
        }
    }

    // No catalog and nothing cached: loading, then unavailable.
    Scene offline(nullptr);
    {
        const HomebrewPackageRoute route {HomebrewCatalogKind::cask, u"some-app"_s};
        HomebrewPackageDetailView view(*offline.store, offline.workspace, route);
        view.resize(760, 480);
        view.show();
        save(&view, outDir, u"homebrew-package-loading"_s);
        settle([&] { return !offline.store->detailLoadingRoutes().contains(route); });
        save(&view, outDir, u"homebrew-package-unavailable"_s);
    }

    // An installed package, as the installed tool opens it, with a failed action.
    NoPickers pickers;
    HomebrewInstalledPackagesStore installed(
        scene.defaults, QLatin1String(HomebrewInstalledPackagesStore::rootBookmarkKey),
        std::make_unique<HomebrewInstallationBookmarkService>(), std::make_unique<HomebrewInstallationScanner>(),
        std::make_unique<HomebrewInstalledPackageProcessor>(), pickers, scene.workspace,
        UserPaths::forHome(scene.dir.filePath(u"home"_s)));
    HomebrewInstalledPackage package;
    package.kind = HomebrewCatalogKind::formula;
    package.identifier = u"openssl@3"_s;
    package.installedVersion = u"3.4.0"_s;
    package.installationURL = u"/opt/homebrew/Cellar/openssl@3/3.4.0"_s;
    package.catalogSummary = scene.store->summary({HomebrewCatalogKind::formula, u"openssl@3"_s});
    {
        HomebrewPackageDetailView view(*scene.store, scene.workspace, package.route(), package, &installed);
        view.resize(760, 1100);
        view.show();
        settle([&] { return !scene.store->detailLoadingRoutes().contains(package.route()); });
        view.findChild<QPushButton*>(u"copyUpgradeCommandPushButton"_s)->click();
        view.findChild<QAbstractButton*>(u"showInFinderToolButton"_s)->click();
        save(&view, outDir, u"homebrew-package-installed"_s);
    }
    {
        // Before the catalog's details arrive.
        HomebrewPackageDetailView view(*offline.store, offline.workspace, package.route(), package, &installed);
        view.resize(760, 640);
        view.show();
        settle([&] { return !offline.store->detailLoadingRoutes().contains(package.route()); });
        save(&view, outDir, u"homebrew-package-installed-no-details"_s);
    }
}

} // namespace

void renderHomebrewCatalogScreenshots(const QString& outDir)
{
    const RealCatalog catalog;
    if (test::sharedDataDir().isEmpty() || catalog.formulaDocuments.size() < 2) {
        std::fprintf(stderr, "shared real data missing; catalog screenshots skipped\n");
        return;
    }
    renderCatalog(outDir, catalog);
    renderDetail(outDir, catalog);
}

} // namespace quillbay::screenshots
