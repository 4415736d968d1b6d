// Catalog validation and search at the size of the real Homebrew catalog.
//
//   cmake --build --preset default --target HomebrewCatalogBench
//   build/default/bench/homebrew_catalog/HomebrewCatalogBench --benchmark_repetitions=10
//       --benchmark_report_aggregates_only=true   (one line)
#include <QCoreApplication>
#include <QCryptographicHash>
#include <memory>

#include <QtConcurrent/QtConcurrentRun>

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include "GeneratedCatalog.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"

using namespace quillbay;

namespace {

constexpr int packagesPerKind = 7500;

struct Catalog
{
    QByteArray formulaBytes = bench::generatedSnapshot(HomebrewCatalogKind::formula, packagesPerKind);
    QByteArray caskBytes = bench::generatedSnapshot(HomebrewCatalogKind::cask, packagesPerKind);
    QString formulaSha = HomebrewCatalogProcessor::sha256Hex(formulaBytes);
    QString caskSha = HomebrewCatalogProcessor::sha256Hex(caskBytes);
    std::unique_ptr<HomebrewCatalogIndex> formulaIndex;
    std::unique_ptr<HomebrewCatalogIndex> caskIndex;

    Catalog()
    {
        HomebrewCatalogProcessor processor;
        formulaIndex = std::make_unique<HomebrewCatalogIndex>(
            processor
                .summaries(HomebrewCatalogKind::formula, formulaBytes, formulaSha, formulaBytes.size(), packagesPerKind)
                .value());
        caskIndex = std::make_unique<HomebrewCatalogIndex>(
            processor.summaries(HomebrewCatalogKind::cask, caskBytes, caskSha, caskBytes.size(), packagesPerKind)
                .value());
    }
};

const Catalog& catalog()
{
    static const Catalog instance;
    return instance;
}

// Size check, SHA-256, strict decoding and row extraction of both snapshots, as the store
// does on every start and every refresh.
void BM_ValidateAndDecodeBothSnapshots(benchmark::State& state)
{
    const Catalog& c = catalog();
    HomebrewCatalogProcessor processor;
    for (auto _ : state) {
        auto formulae = processor.summaries(HomebrewCatalogKind::formula, c.formulaBytes, c.formulaSha,
                                            c.formulaBytes.size(), packagesPerKind);
        auto casks = processor.summaries(HomebrewCatalogKind::cask, c.caskBytes, c.caskSha, c.caskBytes.size(),
                                         packagesPerKind);
        if (!formulae || !casks)
            state.SkipWithError("a generated snapshot did not validate");
        benchmark::DoNotOptimize(formulae);
        benchmark::DoNotOptimize(casks);
    }
    state.SetBytesProcessed(state.iterations() * (c.formulaBytes.size() + c.caskBytes.size()));
}
BENCHMARK(BM_ValidateAndDecodeBothSnapshots)->Unit(benchmark::kMillisecond);

// The same, with the rows of each round kept until the timer is paused: what decoding
// costs when the previous catalog is released elsewhere (the store drops it when the new
// one has been applied), so that freeing 15,000 rows is not counted as decoding.
void BM_ValidateAndDecodeRowsKept(benchmark::State& state)
{
    const Catalog& c = catalog();
    HomebrewCatalogProcessor processor;
    for (auto _ : state) {
        auto formulae = processor.summaries(HomebrewCatalogKind::formula, c.formulaBytes, c.formulaSha,
                                            c.formulaBytes.size(), packagesPerKind);
        auto casks = processor.summaries(HomebrewCatalogKind::cask, c.caskBytes, c.caskSha, c.caskBytes.size(),
                                         packagesPerKind);
        if (!formulae || !casks)
            state.SkipWithError("a generated snapshot did not validate");
        state.PauseTiming();
        formulae = HomebrewResult<QList<HomebrewPackageSummary>>(QList<HomebrewPackageSummary>());
        casks = HomebrewResult<QList<HomebrewPackageSummary>>(QList<HomebrewPackageSummary>());
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * (c.formulaBytes.size() + c.caskBytes.size()));
}
BENCHMARK(BM_ValidateAndDecodeRowsKept)->Unit(benchmark::kMillisecond);

// The same work as the store schedules it: formula and cask side by side on two threads.
// The store releases the previous catalog on the UI thread when it applies the new one,
// apart from decoding, so each round's rows are freed with the timer paused, as in
// BM_ValidateAndDecodeRowsKept.
void BM_ValidateAndDecodeSideBySide(benchmark::State& state)
{
    const Catalog& c = catalog();
    HomebrewCatalogProcessor processor;
    for (auto _ : state) {
        auto formulae = QtConcurrent::run([&] {
            return processor.summaries(HomebrewCatalogKind::formula, c.formulaBytes, c.formulaSha,
                                       c.formulaBytes.size(), packagesPerKind);
        });
        auto casks = processor.summaries(HomebrewCatalogKind::cask, c.caskBytes, c.caskSha, c.caskBytes.size(),
                                         packagesPerKind);
        // Taken out of the future, so that this thread is the one that frees them.
        auto formulaRows = formulae.takeResult();
        if (!formulaRows || !casks)
            state.SkipWithError("a generated snapshot did not validate");
        state.PauseTiming();
        formulaRows = HomebrewResult<QList<HomebrewPackageSummary>>(QList<HomebrewPackageSummary>());
        casks = HomebrewResult<QList<HomebrewPackageSummary>>(QList<HomebrewPackageSummary>());
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * (c.formulaBytes.size() + c.caskBytes.size()));
}
BENCHMARK(BM_ValidateAndDecodeSideBySide)->Unit(benchmark::kMillisecond)->UseRealTime();

// The validation step of a snapshot fetch: the same checks without keeping rows.
void BM_ValidateSnapshotsOnly(benchmark::State& state)
{
    const Catalog& c = catalog();
    HomebrewCatalogProcessor processor;
    for (auto _ : state) {
        benchmark::DoNotOptimize(processor.validateSnapshot(c.formulaBytes, HomebrewCatalogKind::formula, c.formulaSha,
                                                            c.formulaBytes.size(), packagesPerKind));
        benchmark::DoNotOptimize(processor.validateSnapshot(c.caskBytes, HomebrewCatalogKind::cask, c.caskSha,
                                                            c.caskBytes.size(), packagesPerKind));
    }
    state.SetBytesProcessed(state.iterations() * (c.formulaBytes.size() + c.caskBytes.size()));
}
BENCHMARK(BM_ValidateSnapshotsOnly)->Unit(benchmark::kMillisecond);

// The parts, for reading the figure above.
void BM_Sha256OpenSSL(benchmark::State& state)
{
    const Catalog& c = catalog();
    for (auto _ : state)
        benchmark::DoNotOptimize(HomebrewCatalogProcessor::sha256Hex(c.formulaBytes));
    state.SetBytesProcessed(state.iterations() * c.formulaBytes.size());
}
BENCHMARK(BM_Sha256OpenSSL)->Unit(benchmark::kMillisecond);

void BM_Sha256QCryptographicHash(benchmark::State& state)
{
    const Catalog& c = catalog();
    for (auto _ : state)
        benchmark::DoNotOptimize(QCryptographicHash::hash(c.formulaBytes, QCryptographicHash::Sha256));
    state.SetBytesProcessed(state.iterations() * c.formulaBytes.size());
}
BENCHMARK(BM_Sha256QCryptographicHash)->Unit(benchmark::kMillisecond);

void BM_SimdjsonParseOnly(benchmark::State& state)
{
    const Catalog& c = catalog();
    simdjson::dom::parser parser;
    for (auto _ : state) {
        simdjson::dom::element element;
        if (parser.parse(c.formulaBytes.constData(), static_cast<size_t>(c.formulaBytes.size())).get(element))
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(element);
    }
    state.SetBytesProcessed(state.iterations() * c.formulaBytes.size());
}
BENCHMARK(BM_SimdjsonParseOnly)->Unit(benchmark::kMillisecond);

// Folded search keys and sort orders, built once per catalog off the UI thread.
void BM_BuildIndexBothCatalogs(benchmark::State& state)
{
    const Catalog& c = catalog();
    for (auto _ : state) {
        HomebrewCatalogIndex formulae(c.formulaIndex->rows());
        HomebrewCatalogIndex casks(c.caskIndex->rows());
        benchmark::DoNotOptimize(formulae);
        benchmark::DoNotOptimize(casks);
    }
}
BENCHMARK(BM_BuildIndexBothCatalogs)->Unit(benchmark::kMillisecond);

// One keystroke: search both catalogs and sort the results, as the filter task does.
void BM_KeystrokeSearchAndSort(benchmark::State& state, const char* query, HomebrewSortOption option)
{
    const Catalog& c = catalog();
    HomebrewCatalogProcessor processor;
    const QString text = QString::fromUtf8(query);
    qsizetype found = 0;
    for (auto _ : state) {
        const auto formulae = processor.filtered(*c.formulaIndex, text, option);
        const auto casks = processor.filtered(*c.caskIndex, text, option);
        found = formulae.size() + casks.size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["rows"] = static_cast<double>(c.formulaIndex->size() + c.caskIndex->size());
    state.counters["matches"] = static_cast<double>(found);
}
BENCHMARK_CAPTURE(BM_KeystrokeSearchAndSort, one_letter_30d, "e", HomebrewSortOption::installs30Days)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_KeystrokeSearchAndSort, word_name, "server", HomebrewSortOption::nameAscending)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_KeystrokeSearchAndSort, accented_365d, "t\u00e9rminal", HomebrewSortOption::installs365Days)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_KeystrokeSearchAndSort, empty_sort_only, "", HomebrewSortOption::nameDescending)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
