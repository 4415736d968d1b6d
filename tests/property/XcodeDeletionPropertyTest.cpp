#include <QDir>

#include <gtest/gtest.h>

#include "RandomTrial.h"
#include "xcode_cleanup/XcodeFileManager.h"

using namespace quillbay;
using namespace quillbay::test;

// Random trees under DerivedData, random selections with hostile paths among them (one a
// folder inside Xcode that is no deletion root), the picks as leaves of one location row,
// some inside a group row without paths, an unselected leaf for the root now and then, and
// a folder on the way to a selected item swapped for a link out of the root between the
// deletion's two checks. Nothing outside the authorized roots or unselected changes, every
// refusal is reported, and the reclaimed size is that of every file path that left.
TEST(XcodeDeletionPropertyTest, RandomTreesLoseExactlyTheSelection)
{
    const QString developer = QStringLiteral("home/Library/Developer");
    RandomTrial::run(developer + QStringLiteral("/Xcode/DerivedData"), {}, [&](RandomTrial& trial) {
        const QString app = trial.base() + QLatin1Char('/') + developer + QStringLiteral("/Xcode/Products/App.app");
        QDir().mkpath(app);
        trial.prepare(trial.chance(0.1) ? QStringList {app} : QStringList {});
        const auto manager = XcodeFileManager::create(trial.base() + QLatin1Char('/') + developer);
        EXPECT_TRUE(manager);
        if (!manager)
            return RandomTrial::Outcome {};
        manager->setDeletionBetweenChecksHook([&](const XcodeDeletionTarget& target) { trial.raceHook(target.url); });

        XcodeFileProperties location, group;
        location.label = QStringLiteral("Project Build Data and Indexes");
        group.label = QStringLiteral("group");
        location.children.emplace();
        group.children.emplace();
        for (const RandomTrial::Pick& pick : trial.picks()) {
            XcodeFileProperties leaf;
            leaf.label = pick.name;
            leaf.paths = {pick.path};
            leaf.isSelected = true;
            (trial.chance(0.3) ? *group.children : *location.children).push_back(std::move(leaf));
        }
        if (trial.chance(0.3)) {
            location.children->emplace_back();
            location.children->back().label = QStringLiteral("unselected");
            location.children->back().paths = {trial.root()};
        }
        if (!group.children->empty())
            location.children->push_back(std::move(group));
        const XcodeDeletionResult result = manager->deleteItems({std::move(location)});

        QStringList failureNames;
        for (const auto& failure : result.failures)
            failureNames << failure.itemName;
        trial.expectSelectionHonoured(failureNames, false);
        EXPECT_EQ(result.reclaimedSize, trial.goneBytes(false));
        EXPECT_EQ(result.failedItemCount, result.failures.size());
        return RandomTrial::Outcome {int(result.deletedItemCount), int(result.failedItemCount)};
    });
}
