// From a keystroke in the catalog's search field to the updated table model, with the
// full-size catalog (7,500 formulae and 7,500 casks) loaded through the real store from a
// validated cache, the real view shown offscreen. Compared in the same run with
// `grep -c -i` over the formula snapshot on disk, what a user would reach for instead.
//
//   cmake --build --preset default --target HomebrewCatalogScreenBench
//   QT_QPA_PLATFORM=offscreen build/default/bench/homebrew_catalog/HomebrewCatalogScreenBench
#include <QAction>
#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include <nlohmann/json.hpp>

#include "GeneratedCatalog.h"
#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "homebrew_catalog/views/HomebrewPackageTable.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"
#include "platform/Workspace.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

constexpr int packagesPerKind = 7500;
constexpr int rounds = 15;

QString snapshotPath(HomebrewCatalogKind kind)
{
    return u"/v1/catalog/snapshots/bench/"_s + rawValue(kind) + u".json"_s;
}

QByteArray manifest(const QByteArray& formulae, const QByteArray& casks)
{
    using Json = nlohmann::ordered_json;
    const auto artifact = [](HomebrewCatalogKind kind, const QByteArray& bytes) {
        return Json {{"path", snapshotPath(kind).toStdString()},
                     {"sha256", QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString()},
                     {"byteCount", bytes.size()},
                     {"packageCount", packagesPerKind}};
    };
    const Json document {{"schemaVersion", 1},
                         {"snapshotID", "bench"},
                         {"generatedAt", "2026-01-01T00:00:00Z"},
                         {"source", Json {{"name", "bench"}, {"url", "https://example.invalid/"}}},
                         {"formula", artifact(HomebrewCatalogKind::formula, formulae)},
                         {"cask", artifact(HomebrewCatalogKind::cask, casks)}};
    return QByteArray::fromStdString(document.dump());
}

bool waitFor(const std::function<bool()>& done, int milliseconds = 20000)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

struct Stats
{
    double median;
    double p90;
};

Stats stats(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values[std::min(values.size() - 1, values.size() * 9 / 10)]};
}

class NoWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl&) override { return false; }
    bool revealFiles(const QStringList&) override { return false; }
    std::optional<QString> applicationPath(const QString&) override { return std::nullopt; }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return false; }
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QTemporaryDir dir;

    // A cache as a completed refresh leaves it, checked just now, so that no fetch starts.
    const QByteArray formulae = bench::generatedSnapshot(HomebrewCatalogKind::formula, packagesPerKind);
    const QByteArray casks = bench::generatedSnapshot(HomebrewCatalogKind::cask, packagesPerKind);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    {
        HomebrewCacheService cache(dir.filePath(u"cache"_s));
        const auto formulaEndpoint = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula,
                                                                       snapshotPath(HomebrewCatalogKind::formula));
        const auto caskEndpoint
            = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, snapshotPath(HomebrewCatalogKind::cask));
        const bool written = cache.ensureRoot().ok() && cache.store(formulaEndpoint, formulae, {now, {}, {}}).ok()
            && cache.store(caskEndpoint, casks, {now, {}, {}}).ok()
            && cache.storeValidatedManifest(manifest(formulae, casks), {formulaEndpoint, caskEndpoint}).ok()
            && cache.recordCheck(now).ok();
        if (!written) {
            std::fprintf(stderr, "could not write the cache\n");
            return 1;
        }
    }
    QFile snapshotFile(dir.filePath(u"formula.json"_s));
    snapshotFile.open(QIODevice::WriteOnly);
    snapshotFile.write(formulae);
    snapshotFile.close();

    SettingsDefaults defaults(dir.filePath(u"defaults.ini"_s));
    HomebrewAPIClient::Configuration configuration;
    configuration.baseURL = QUrl(u"http://127.0.0.1:1"_s);
    configuration.signingSecret = "bench";
    HomebrewCatalogStore store(std::make_unique<HomebrewAPIClient>(
                                   configuration, std::make_unique<HomebrewCacheService>(dir.filePath(u"cache"_s))),
                               HomebrewCatalogProcessor(), defaults);
    NoWorkspace workspace;
    HomebrewCatalogView view(store, workspace);
    view.resize(1100, 760);
    view.show();
    if (!waitFor([&] { return store.catalogGeneration() > 0 && !store.hasLoadTask(); })) {
        std::fprintf(stderr, "the catalog did not load\n");
        return 1;
    }
    store.setSelectedKind(HomebrewCatalogKind::formula);
    auto* field = view.findChild<QLineEdit*>(u"searchLineEdit"_s);
    HomebrewPackageTableModel* results = view.searchTable()->packageModel();
    int resets = 0;
    QElapsedTimer keyClock;
    qint64 publishedAt = 0;
    qint64 resetAt = 0;
    QObject::connect(results, &QAbstractItemModel::modelReset, &view, [&] {
        ++resets;
        resetAt = keyClock.nsecsElapsed();
    });
    QObject::connect(&store, &HomebrewCatalogStore::searchResultGenerationChanged, &view,
                     [&] { publishedAt = keyClock.nsecsElapsed(); });

    // Keystroke (the last letter of each query) to the reset of the results model. The
    // store waits 150 ms after a keystroke before it searches; that pause is part of the
    // figure and is also given subtracted.
    const QStringList queries {u"e"_s, u"li"_s, u"server"_s, u"python"_s, u"git"_s, u"lib"_s, u"de"_s};
    std::vector<double> keystroke;
    std::vector<double> afterDebounce;
    std::vector<double> grep;
    std::vector<double> viewShare;
    for (int round = 0; round < rounds; ++round) {
        for (const QString& query : queries) {
            field->setText(query.chopped(1));
            waitFor([&] { return !store.isFiltering(); });
            QCoreApplication::processEvents();
            const int before = resets;
            keyClock.start();
            QTest::keyClick(field, query.back().toLatin1());
            if (!waitFor([&] { return resets > before; })) {
                std::fprintf(stderr, "no results for %s\n", qPrintable(query));
                return 1;
            }
            const double ms = static_cast<double>(resetAt) / 1e6;
            keystroke.push_back(ms);
            viewShare.push_back(static_cast<double>(resetAt - publishedAt) / 1e6);
            afterDebounce.push_back(ms - HomebrewCatalogStore::searchDebounceMs);

            QElapsedTimer grepClock;
            grepClock.start();
            QProcess process;
            process.start(u"grep"_s, {u"-c"_s, u"-i"_s, query, snapshotFile.fileName()});
            process.waitForFinished();
            grep.push_back(static_cast<double>(grepClock.nsecsElapsed()) / 1e6);
        }
    }
    field->clear();
    waitFor([&] { return !store.isFiltering(); });

    // A sort picked from the menu (no pause) to the reset of the catalog model.
    std::vector<double> sort;
    HomebrewPackageTable* table = view.catalogTable();
    int catalogResets = 0;
    QObject::connect(table->packageModel(), &QAbstractItemModel::modelReset, &view, [&] { ++catalogResets; });
    const QList<QAction*> sortActions = view.sortMenu()->actions();
    for (int round = 0; round < rounds * 2; ++round) {
        const int before = catalogResets;
        QElapsedTimer clock;
        clock.start();
        sortActions[round % sortActions.size()]->trigger();
        if (!waitFor([&] { return catalogResets > before; }))
            continue; // the option was already current
        sort.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }

    // One frame of the table: scroll to a place and paint the visible rows.
    std::vector<double> frame;
    QScrollBar* scroll = table->verticalScrollBar();
    for (int round = 0; round < 60; ++round) {
        QElapsedTimer clock;
        clock.start();
        scroll->setValue(scroll->maximum() * ((round * 37) % 100) / 100);
        const QPixmap painted = table->viewport()->grab();
        frame.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }

    const Stats k = stats(keystroke);
    const Stats d = stats(afterDebounce);
    const Stats g = stats(grep);
    const Stats v = stats(viewShare);
    const Stats s = stats(sort);
    const Stats f = stats(frame);
    std::printf("rows per kind: %d, formula rows shown: %d\n", packagesPerKind, table->packageModel()->rowCount());
    std::printf("keystroke -> results model reset: median %.1f ms, p90 %.1f ms (%zu keystrokes)\n", k.median, k.p90,
                keystroke.size());
    std::printf("  of which after the 150 ms pause: median %.1f ms, p90 %.1f ms\n", d.median, d.p90);
    std::printf("  of which from the store's publication to the model reset: median %.2f ms, p90 %.2f ms\n", v.median,
                v.p90);
    std::printf("grep -c -i over the formula snapshot: median %.1f ms, p90 %.1f ms\n", g.median, g.p90);
    std::printf("ratio (after the pause) / grep: %.2fx\n", d.median / g.median);
    std::printf("sort menu -> catalog model reset: median %.1f ms, p90 %.1f ms (%zu changes)\n", s.median, s.p90,
                sort.size());
    std::printf("scroll + paint one frame of the table: median %.1f ms, p90 %.1f ms\n", f.median, f.p90);
    return 0;
}
