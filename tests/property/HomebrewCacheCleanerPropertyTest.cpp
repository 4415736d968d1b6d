#include <gtest/gtest.h>

#include "RandomTrial.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"

using namespace quillbay;
using namespace quillbay::test;

// Random cache trees with downloads/ and Cask/ among the folders, the picks spread over
// entries of one to three paths (an empty entry and a shared path now and then), and a
// folder on the way to a selected item swapped for a link out of the cache right before
// the item's removal. Nothing outside or unselected changes, every refusal is reported,
// entries count by what is left on disk, and the reclaimed size is the allocated size of
// everything that left, each file identity once.
TEST(HomebrewCacheCleanerPropertyTest, RandomTreesLoseExactlyTheSelection)
{
    const QStringList containers {QStringLiteral("downloads"), QStringLiteral("Cask")};
    RandomTrial::run(QStringLiteral("Library/Caches/Homebrew"), containers, [&](RandomTrial& trial) {
        trial.prepare();
        std::vector<HomebrewCacheEntry> entries;
        const auto addEntry = [&](const QString& id, const QStringList& paths) {
            entries.push_back(HomebrewCacheEntry {});
            entries.back().id = entries.back().displayName = id;
            entries.back().paths = paths;
        };
        const auto& picks = trial.picks();
        for (qsizetype i = 0; i < picks.size();) {
            // An entry never holds one clean path twice; separate entries may share one.
            QStringList paths, clean;
            for (int n = trial.between(1, 3); n > 0 && i < picks.size(); --n, ++i) {
                if (!clean.contains(picks.at(i).clean))
                    paths << picks.at(i).path;
                clean << picks.at(i).clean;
            }
            addEntry(QStringLiteral("entry-%1").arg(entries.size()), paths);
        }
        if (trial.chance(0.1))
            addEntry(QStringLiteral("empty"), {});
        if (!picks.isEmpty() && trial.chance(0.2))
            addEntry(QStringLiteral("shared"), {picks.at(trial.between(0, int(picks.size()) - 1)).path});
        const bool removeEmptyContainers = trial.chance(0.5);

        HomebrewCacheCleaner cleaner(trial.root(), QStringLiteral("~/Library/Caches/Homebrew"));
        cleaner.setBeforeRemovalForTesting([&](const QString& path) { trial.raceHook(path); });
        const HomebrewCacheCleaner::Result result = cleaner.deleteEntries(entries, trial.root(), removeEmptyContainers);

        QStringList failureNames;
        for (const auto& failure : result.failures)
            failureNames << failure.itemName;
        trial.expectSelectionHonoured(failureNames, true, removeEmptyContainers ? containers : QStringList {});
        EXPECT_EQ(result.reclaimedSize, trial.goneBytes(true));
        const int gone = int(std::count_if(entries.begin(), entries.end(), [](const HomebrewCacheEntry& entry) {
            return !entry.paths.isEmpty() && std::none_of(entry.paths.begin(), entry.paths.end(), pathExists);
        }));
        EXPECT_EQ(result.deletedEntryCount, gone);
        EXPECT_EQ(result.failedEntryCount, int(entries.size()) - gone);
        return RandomTrial::Outcome {result.deletedEntryCount, int(result.failures.size())};
    });
}
