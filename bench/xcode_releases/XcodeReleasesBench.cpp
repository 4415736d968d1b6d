#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <benchmark/benchmark.h>

#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;

namespace {

// The published feed, from QUILLBAY_SHARED_DIR or ../shared beside the checkout.
QByteArray realFeed()
{
    QString shared = qEnvironmentVariable("QUILLBAY_SHARED_DIR");
    if (shared.isEmpty())
        shared = QStringLiteral(QUILLBAY_SOURCE_DIR "/../shared");
    QFile file(shared + QStringLiteral("/realdata/xcodereleases/data.json"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void skipWithoutFeed(benchmark::State& state, const QByteArray& feed)
{
    if (feed.isEmpty())
        state.SkipWithError("the published feed is not beside this checkout");
}

// What a launch does with the answer: decode every release and derive every cell text
// (both forms) and build text the table can ask for.
void BM_DecodeAndBuildAllCellTexts(benchmark::State& state)
{
    const QByteArray feed = realFeed();
    skipWithoutFeed(state, feed);
    const QLocale locale(QLocale::English, QLocale::UnitedStates);
    for (auto _ : state) {
        const auto releases = decodeXcodeReleases(feed);
        qsizetype characters = 0;
        for (const XcodeRelease& release : *releases) {
            for (const Column column : allColumns) {
                characters += cellText(release, column, false, locale).size();
                characters += cellText(release, column, true, locale).size();
                characters += buildText(release, column).value_or(QString()).size();
            }
            characters += isAppleSiliconOnly(release) + isFinalRelease(release);
        }
        benchmark::DoNotOptimize(characters);
    }
    state.SetBytesProcessed(state.iterations() * feed.size());
}
BENCHMARK(BM_DecodeAndBuildAllCellTexts)->Unit(benchmark::kMillisecond);

void BM_DecodeOnly(benchmark::State& state)
{
    const QByteArray feed = realFeed();
    skipWithoutFeed(state, feed);
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeXcodeReleases(feed));
    state.SetBytesProcessed(state.iterations() * feed.size());
}
BENCHMARK(BM_DecodeOnly)->Unit(benchmark::kMillisecond);

// The reader a Qt program would reach for first: QJsonDocument into a tree, without
// even typing the records.
void BM_QJsonDocumentParseOnly(benchmark::State& state)
{
    const QByteArray feed = realFeed();
    skipWithoutFeed(state, feed);
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(feed).array().size());
    state.SetBytesProcessed(state.iterations() * feed.size());
}
BENCHMARK(BM_QJsonDocumentParseOnly)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
