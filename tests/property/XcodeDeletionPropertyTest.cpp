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
// folder on the way to a selected item swapped for a link out of the root either before
// the deletion or between its two checks. Whatever happens, nothing outside the authorized
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
        EXPECT_EQ(result.reclaimedSize, trial.goneFileBytes());
        EXPECT_EQ(result.failedItemCount, result.failures.size());
        return RandomTrial::Outcome {int(result.deletedItemCount), int(result.failedItemCount)};
    });
}

// Found by the property above: the guard judged the standardized path while the removal
// acted on the spelling as given, and "link/" makes the system follow the link.
TEST(XcodeDeletionPropertyTest, TrailingSlashOnALinkOutRemovesOnlyTheLink)
{
    TempTree tree;
    tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
    tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DerivedData/file"), 5000);
    tree.symlink(QStringLiteral("home/Library/Developer/Xcode/DerivedData/out"),
                 tree.path(QStringLiteral("outside/keep")));
    const auto manager = XcodeFileManager::create(tree.path(kDeveloper));
    ASSERT_TRUE(manager);

    struct Case
    {
        const char* spelling;
        const char* item;
    };
    const Case cases[] = {{"out/", "out"}, {"out/.", "out"}, {"file/", "file"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.spelling);
        tree.writeFile(QStringLiteral("outside/keep/precious.txt"), "precious");
        XcodeFileProperties leaf;
        leaf.label = QLatin1String(c.item);
        leaf.paths
            = {tree.path(QStringLiteral("home/Library/Developer/Xcode/DerivedData/")) + QLatin1String(c.spelling)};
        leaf.isSelected = true;
        XcodeFileProperties location;
        location.label = QStringLiteral("Project Build Data and Indexes");
        location.children = std::vector<XcodeFileProperties> {leaf};
        const XcodeDeletionResult result = manager->deleteItems({location});
        EXPECT_TRUE(tree.exists(QStringLiteral("outside/keep/precious.txt")));
        EXPECT_TRUE(result.failures.isEmpty());
        EXPECT_FALSE(tree.exists(QStringLiteral("home/Library/Developer/Xcode/DerivedData/") + QLatin1String(c.item)));
    }
}
