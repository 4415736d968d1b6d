#include <gtest/gtest.h>

#include "PropertyRun.h"
#include "RandomTrial.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

// The picks spread over entries of one to three paths, with an empty entry now and then.
std::vector<HomebrewCacheEntry> entriesFor(RandomTrial& trial)
{
    std::vector<HomebrewCacheEntry> entries;
    const auto& picks = trial.picks();
    for (qsizetype i = 0; i < picks.size();) {
        HomebrewCacheEntry entry;
        entry.id = QStringLiteral("entry-%1").arg(entries.size());
        entry.displayName = entry.id;
        for (int n = trial.between(1, 3); n > 0 && i < picks.size(); --n, ++i) {
            // An entry never holds one clean path twice; separate entries may share one.
            const bool repeated = std::any_of(entry.paths.begin(), entry.paths.end(),
                                              [&](const QString& p) { return lexicallyClean(p) == picks.at(i).clean; });
            if (!repeated)
                entry.paths << picks.at(i).path;
        }
        entries.push_back(std::move(entry));
    }
    const auto extra = [&](const QString& id, const QStringList& paths) {
        HomebrewCacheEntry entry;
        entry.id = id;
        entry.displayName = id;
        entry.paths = paths;
        entries.push_back(std::move(entry));
    };
    if (trial.chance(0.1))
        extra(QStringLiteral("empty"), {});
    if (!picks.isEmpty() && trial.chance(0.2))
        extra(QStringLiteral("shared"), {picks.at(trial.between(0, static_cast<int>(picks.size()) - 1)).path});
    return entries;
}

} // namespace

// Random cache trees with downloads/ and Cask/ among the folders, random entries with
// hostile paths among them, and a folder on the way to a selected item swapped for a link
// out of the cache either before the call or right before the item's removal. Nothing
// outside the cache changes, nothing unselected inside it changes, every refusal is
// reported, entries count by what is left on disk, and the reclaimed size is the
// allocated size of everything that left, each file identity once.
TEST(HomebrewCacheCleanerPropertyTest, RandomTreesLoseExactlyTheSelection)
{
    const PropertyRun run = PropertyRun::fromEnvironment(1000);
    const QuietLog quiet;
    int deleted = 0;
    int refused = 0;
    for (int i = 0; i < run.trees; ++i) {
        const quint64 seed = run.seed + static_cast<quint64>(i);
        SCOPED_TRACE(PropertyRun::replayHint(seed));
        const QStringList containers {QStringLiteral("downloads"), QStringLiteral("Cask")};
        RandomTrial trial(seed, QStringLiteral("Library/Caches/Homebrew"), containers);
        trial.populate();
        trial.pickSelection();
        if (trial.chance(0.25))
            trial.swapBeforeDeletion();
        trial.prepareRaces();

        HomebrewCacheCleaner cleaner(trial.root(), QStringLiteral("~/Library/Caches/Homebrew"));
        cleaner.setBeforeRemovalForTesting([&](const QString& path) { trial.raceHook(path); });
        const std::vector<HomebrewCacheEntry> entries = entriesFor(trial);
        const bool removeEmptyContainers = trial.chance(0.5);
        const TreeState outsideBefore = trial.captureOutside();
        const TreeState rootBefore = trial.captureRoot();

        const HomebrewCacheCleaner::Result result = cleaner.deleteEntries(entries, trial.root(), removeEmptyContainers);

        const TreeState rootAfter = trial.captureRoot();
        trial.expectOutsideUnchanged(outsideBefore);
        QStringList failureNames;
        for (const auto& failure : result.failures)
            failureNames << failure.itemName;
        trial.expectSelectionHonoured(rootBefore, failureNames, true,
                                      removeEmptyContainers ? containers : QStringList {});
        EXPECT_EQ(result.reclaimedSize, RandomTrial::goneIdentityBytes(rootBefore, rootAfter));
        int gone = 0;
        for (const HomebrewCacheEntry& entry : entries) {
            if (!entry.paths.isEmpty()
                && std::none_of(entry.paths.begin(), entry.paths.end(), [](const QString& p) { return pathExists(p); }))
                ++gone;
        }
        EXPECT_EQ(result.deletedEntryCount, gone);
        EXPECT_EQ(result.failedEntryCount, static_cast<int>(entries.size()) - gone);
        deleted += result.deletedEntryCount;
        refused += static_cast<int>(result.failures.size());
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "selection:\n" << trial.describe().toStdString();
            break;
        }
    }
    if (run.trees >= 100) {
        EXPECT_GT(deleted, run.trees);
        EXPECT_GT(refused, run.trees / 10);
    }
}
