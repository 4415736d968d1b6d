#include <QCoreApplication>
#include <QHash>
#include <algorithm>

#include "foundation/LocalizedText.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

namespace {

qint64 sizeOrZero(const std::optional<qint64>& size)
{
    return size.value_or(0);
}

qint64 sumOf(const std::vector<const HomebrewCacheEntry*>& entries)
{
    qint64 total = 0;
    for (const HomebrewCacheEntry* entry : entries) {
        if (__builtin_add_overflow(total, sizeOrZero(entry->allocatedSize), &total))
            qFatal("Homebrew cache size overflow");
    }
    return total;
}

QStringList idsOf(const std::vector<const HomebrewCacheEntry*>& entries)
{
    QStringList ids;
    ids.reserve(qsizetype(entries.size()));
    for (const HomebrewCacheEntry* entry : entries)
        ids.append(entry->id);
    return ids;
}

HomebrewCacheNode leafFor(const HomebrewCacheEntry& entry)
{
    return HomebrewCacheNode {QStringLiteral("entry-node:") + entry.id, entry.version.value_or(entry.displayName),
                              entry.allocatedSize, QStringList {entry.id}, std::nullopt};
}

QString categoryTitle(HomebrewCacheCategory category)
{
    switch (category) {
    case HomebrewCacheCategory::formula:
        return QStringLiteral("Formula");
    case HomebrewCacheCategory::cask:
        return QStringLiteral("Cask");
    case HomebrewCacheCategory::other:
        break;
    }
    return QCoreApplication::translate("HomebrewCache", "Other Cache");
}

std::vector<HomebrewCacheNode> packageNodes(HomebrewCacheCategory category,
                                            const std::vector<const HomebrewCacheEntry*>& entries)
{
    // Groups in the order of their first entry; the sort below decides the final order.
    QHash<QString, qsizetype> groupIndex;
    std::vector<std::pair<QString, std::vector<const HomebrewCacheEntry*>>> groups;
    for (const HomebrewCacheEntry* entry : entries) {
        const QString key = entry->packageIdentifier.value_or(entry->displayName);
        const auto found = groupIndex.constFind(key);
        if (found == groupIndex.cend()) {
            groupIndex.insert(key, qsizetype(groups.size()));
            groups.push_back({key, {entry}});
        } else {
            groups[size_t(*found)].second.push_back(entry);
        }
    }
    std::vector<HomebrewCacheNode> nodes;
    nodes.reserve(groups.size());
    for (auto& [key, members] : groups) {
        std::vector<const HomebrewCacheEntry*> byVersion = members;
        // Newest first: "1.10" after "1.9" in ascending order, so first here.
        std::stable_sort(byVersion.begin(), byVersion.end(), [](const auto* a, const auto* b) {
            return localizedStandardCompare(a->version.value_or(QString()), b->version.value_or(QString())) > 0;
        });
        std::vector<HomebrewCacheNode> leaves;
        leaves.reserve(byVersion.size());
        for (const HomebrewCacheEntry* entry : byVersion)
            leaves.push_back(leafFor(*entry));
        nodes.push_back(
            HomebrewCacheNode {QStringLiteral("package-node:") + rawValue(category) + QLatin1Char(':') + key, key,
                               sumOf(members), idsOf(members), std::move(leaves)});
    }
    std::stable_sort(nodes.begin(), nodes.end(), [](const HomebrewCacheNode& a, const HomebrewCacheNode& b) {
        return localizedStandardCompare(a.title, b.title) < 0;
    });
    return nodes;
}

std::vector<HomebrewCacheNode> otherLeaves(const std::vector<const HomebrewCacheEntry*>& entries)
{
    std::vector<const HomebrewCacheEntry*> bySize = entries;
    std::stable_sort(bySize.begin(), bySize.end(), [](const auto* a, const auto* b) {
        return sizeOrZero(a->allocatedSize) > sizeOrZero(b->allocatedSize);
    });
    std::vector<HomebrewCacheNode> leaves;
    leaves.reserve(bySize.size());
    for (const HomebrewCacheEntry* entry : bySize)
        leaves.push_back(leafFor(*entry));
    return leaves;
}

} // namespace

QString rawValue(HomebrewCacheCategory category)
{
    switch (category) {
    case HomebrewCacheCategory::formula:
        return QStringLiteral("formula");
    case HomebrewCacheCategory::cask:
        return QStringLiteral("cask");
    case HomebrewCacheCategory::other:
        break;
    }
    return QStringLiteral("other");
}

std::vector<HomebrewCacheNode> HomebrewCacheScanner::makeOutline(const std::vector<HomebrewCacheEntry>& entries)
{
    std::vector<HomebrewCacheNode> roots;
    for (const HomebrewCacheCategory category :
         {HomebrewCacheCategory::formula, HomebrewCacheCategory::cask, HomebrewCacheCategory::other}) {
        std::vector<const HomebrewCacheEntry*> members;
        for (const HomebrewCacheEntry& entry : entries) {
            if (entry.category == category)
                members.push_back(&entry);
        }
        if (members.empty())
            continue;
        std::vector<HomebrewCacheNode> children
            = category == HomebrewCacheCategory::other ? otherLeaves(members) : packageNodes(category, members);
        roots.push_back(HomebrewCacheNode {QStringLiteral("category-node:") + rawValue(category),
                                           categoryTitle(category), sumOf(members), idsOf(members),
                                           std::move(children)});
    }
    return roots;
}

} // namespace quillbay
