#include <gtest/gtest.h>

#include "CacheFixture.h" // PrintTo
#include "homebrew_cache/HomebrewCacheScanner.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

HomebrewCacheEntry
package(HomebrewCacheCategory category, const char* name, const char* version, std::optional<qint64> size)
{
    HomebrewCacheEntry entry;
    entry.category = category;
    entry.packageIdentifier = QString::fromUtf8(name);
    entry.version = QString::fromUtf8(version);
    entry.displayName = QString::fromUtf8(name);
    entry.id = QStringLiteral("package:") + rawValue(category) + QLatin1Char(':') + *entry.packageIdentifier
        + QLatin1Char(':') + *entry.version;
    entry.allocatedSize = size;
    return entry;
}

HomebrewCacheEntry other(const char* id, const char* name, std::optional<qint64> size)
{
    HomebrewCacheEntry entry;
    entry.id = QString::fromUtf8(id);
    entry.displayName = QString::fromUtf8(name);
    entry.allocatedSize = size;
    return entry;
}

QStringList titles(const std::vector<HomebrewCacheNode>& nodes)
{
    QStringList list;
    for (const HomebrewCacheNode& node : nodes)
        list << node.title;
    return list;
}

} // namespace

TEST(HomebrewCacheOutlineTest, GroupsCategoriesPackagesAndVersions)
{
    using C = HomebrewCacheCategory;
    // Entry order deliberately not the outline's order.
    const std::vector<HomebrewCacheEntry> entries {
        other("other:path:/c/big", "big", 5000),
        package(C::cask, "firefox", "120.0", 300),
        package(C::formula, "wget", "1.9", 10),
        package(C::formula, "Bison", "3.8", 1),
        package(C::formula, "wget", "1.10", std::nullopt),
        package(C::formula, "wget", "1.9.1", 20),
        package(C::formula, "wget", "2.0", 40),
        package(C::formula, "abc10", "1", 2),
        package(C::formula, "abc9", "1", 3),
        other("other:shared-downloads", "Shared Downloads", 70),
        other("other:unrecognized-downloads", "Unrecognized Downloads", std::nullopt),
        other("other:path:/c/tie", "tie", 70),
        package(C::formula, "firefox", "120.0", 5),
    };
    const auto roots = HomebrewCacheScanner::makeOutline(entries);
    ASSERT_EQ(roots.size(), 3u);
    EXPECT_EQ(titles(roots),
              (QStringList {QStringLiteral("Formula"), QStringLiteral("Cask"), QStringLiteral("Other Cache")}));

    const HomebrewCacheNode& formula = roots[0];
    EXPECT_EQ(formula.allocatedSize, 10 + 1 + 0 + 20 + 40 + 2 + 3 + 5) << "an unknown size counts as nothing";
    EXPECT_EQ(formula.entryIDs,
              (QStringList {entries[2].id, entries[3].id, entries[4].id, entries[5].id, entries[6].id, entries[7].id,
                            entries[8].id, entries[12].id}));
    ASSERT_TRUE(formula.children.has_value());
    // Names by the collator: case does not decide first, numbers by value.
    EXPECT_EQ(titles(*formula.children),
              (QStringList {QStringLiteral("abc9"), QStringLiteral("abc10"), QStringLiteral("Bison"),
                            QStringLiteral("firefox"), QStringLiteral("wget")}));
    const HomebrewCacheNode& wget = formula.children->back();
    EXPECT_EQ(wget.id, QStringLiteral("package-node:formula:wget"));
    EXPECT_EQ(wget.allocatedSize, 70);
    EXPECT_EQ(wget.entryIDs, (QStringList {entries[2].id, entries[4].id, entries[5].id, entries[6].id}));
    ASSERT_TRUE(wget.children.has_value());
    EXPECT_EQ(
        titles(*wget.children),
        (QStringList {QStringLiteral("2.0"), QStringLiteral("1.10"), QStringLiteral("1.9.1"), QStringLiteral("1.9")}));
    const HomebrewCacheNode& unknownLeaf = (*wget.children)[1];
    EXPECT_EQ(unknownLeaf.id, QStringLiteral("entry-node:package:formula:wget:1.10"));
    EXPECT_FALSE(unknownLeaf.allocatedSize.has_value()) << "a leaf shows its entry's size, unknown included";
    EXPECT_EQ(unknownLeaf.entryIDs, QStringList {entries[4].id});
    EXPECT_FALSE(unknownLeaf.children.has_value());

    // The cask and the formula called firefox stay apart.
    ASSERT_EQ(roots[1].children->size(), 1u);
    EXPECT_EQ(roots[1].children->front().id, QStringLiteral("package-node:cask:firefox"));
    EXPECT_EQ(roots[1].allocatedSize, 300);

    // Other: leaves only, largest first, equal sizes in entry order.
    const HomebrewCacheNode& others = roots[2];
    EXPECT_EQ(titles(*others.children),
              (QStringList {QStringLiteral("big"), QStringLiteral("Shared Downloads"), QStringLiteral("tie"),
                            QStringLiteral("Unrecognized Downloads")}));
    for (const HomebrewCacheNode& leaf : *others.children)
        EXPECT_FALSE(leaf.children.has_value());
    EXPECT_EQ(others.allocatedSize, 5000 + 70 + 70);

    // Categories without entries are left out; a sum is never unknown, even when every
    // part is.
    const auto onlyOther = HomebrewCacheScanner::makeOutline({other("other:path:/x", "x", std::nullopt)});
    ASSERT_EQ(onlyOther.size(), 1u);
    EXPECT_EQ(onlyOther[0].id, QStringLiteral("category-node:other"));
    EXPECT_EQ(onlyOther[0].allocatedSize, 0);
}
