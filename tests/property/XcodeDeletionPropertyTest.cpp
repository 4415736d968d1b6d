#include <QDir>

#include <gtest/gtest.h>

#include "RandomTrial.h"
#include "xcode_cleanup/XcodeFileManager.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QString kDeveloper = QStringLiteral("home/Library/Developer");

// The picks as leaves of one location row, some inside a group row that has no paths of
// its own, with an unselected leaf for an unpicked item now and then.
std::vector<XcodeFileProperties> rowsFor(RandomTrial& trial)
{
    XcodeFileProperties location;
    location.label = QStringLiteral("Project Build Data and Indexes");
    location.children.emplace();
    XcodeFileProperties group;
    group.label = QStringLiteral("group");
    group.children.emplace();
    for (const RandomTrial::Pick& pick : trial.picks()) {
        XcodeFileProperties leaf;
        leaf.label = pick.name;
        leaf.paths = {pick.path};
        leaf.isSelected = true;
        (trial.chance(0.3) ? *group.children : *location.children).push_back(std::move(leaf));
    }
    if (trial.chance(0.3)) {
        XcodeFileProperties unselected;
        unselected.label = QStringLiteral("unselected");
        unselected.paths = {trial.root()};
        location.children->push_back(std::move(unselected));
    }
    if (!group.children->empty())
        location.children->push_back(std::move(group));
    return {std::move(location)};
}

} // namespace

// Random trees under DerivedData, random selections with hostile paths among them, and a
// folder on the way to a selected item swapped for a link out of the root between the
// deletion's two checks. Whatever happens, nothing outside the authorized
// roots changes, nothing unselected inside them changes, every refusal is reported, and
// the reclaimed size is the allocated size of every file path that left the disk.
TEST(XcodeDeletionPropertyTest, RandomTreesLoseExactlyTheSelection)
{
    RandomTrial::run(kDeveloper + QStringLiteral("/Xcode/DerivedData"), {}, [](RandomTrial& trial) {
        // A folder inside Xcode that is no deletion root.
        const QString app = trial.base() + QLatin1Char('/') + kDeveloper + QStringLiteral("/Xcode/Products/App.app");
        QDir().mkpath(app);
        trial.prepare(trial.chance(0.1) ? QStringList {app} : QStringList {});
        const auto manager = XcodeFileManager::create(trial.base() + QLatin1Char('/') + kDeveloper);
        EXPECT_TRUE(manager);
        if (!manager)
            return RandomTrial::Outcome {};
        manager->setDeletionBetweenChecksHook([&](const XcodeDeletionTarget& target) { trial.raceHook(target.url); });

        const XcodeDeletionResult result = manager->deleteItems(rowsFor(trial));

        QStringList failureNames;
        for (const auto& failure : result.failures)
            failureNames << failure.itemName;
        trial.expectSelectionHonoured(failureNames, false);
        EXPECT_EQ(result.reclaimedSize, trial.goneBytes(false));
        EXPECT_EQ(result.failedItemCount, result.failures.size());
        return RandomTrial::Outcome {int(result.deletedItemCount), int(result.failedItemCount)};
    });
}
