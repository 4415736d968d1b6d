#include "homebrew_catalog/HomebrewCatalogIndex.h"

#include <algorithm>
#include <numeric>

#include "foundation/LocalizedText.h"

namespace quillbay {

namespace {

constexpr QChar fieldSeparator(u'\0');

const std::optional<qint64>& countFor(const HomebrewPackageSummary& row, HomebrewSortOption option)
{
    switch (option) {
    case HomebrewSortOption::installs90Days:
        return row.analytics.ninetyDays;
    case HomebrewSortOption::installs365Days:
        return row.analytics.threeHundredSixtyFiveDays;
    default:
        return row.analytics.thirtyDays;
    }
}

// Rank of each row's display name in collation order; names the collator cannot tell
// apart share a rank. Sort keys are built once, so the n log n comparisons are byte
// comparisons instead of collator calls.
std::vector<int> nameRanks(const QList<HomebrewPackageSummary>& rows)
{
    const auto count = static_cast<size_t>(rows.size());
    QCollator& collator = standardCollator();
    std::vector<QCollatorSortKey> keys;
    keys.reserve(count);
    for (const HomebrewPackageSummary& row : rows)
        keys.push_back(collator.sortKey(row.displayName));
    std::vector<int> byName(count);
    std::iota(byName.begin(), byName.end(), 0);
    std::stable_sort(byName.begin(), byName.end(), [&](int a, int b) {
        return keys[static_cast<size_t>(a)].compare(keys[static_cast<size_t>(b)]) < 0;
    });
    std::vector<int> ranks(count, 0);
    int rank = 0;
    for (size_t i = 0; i < byName.size(); ++i) {
        if (i > 0 && keys[static_cast<size_t>(byName[i - 1])].compare(keys[static_cast<size_t>(byName[i])]) != 0)
            ++rank;
        ranks[static_cast<size_t>(byName[i])] = rank;
    }
    return ranks;
}

} // namespace

HomebrewCatalogIndex::HomebrewCatalogIndex(QList<HomebrewPackageSummary> rows)
    : m_rows(std::move(rows))
{
    const auto count = static_cast<size_t>(m_rows.size());
    m_haystacks.reserve(count);
    for (const HomebrewPackageSummary& row : std::as_const(m_rows)) {
        QString haystack = foldedSearchKey(row.identifier);
        haystack += fieldSeparator;
        haystack += foldedSearchKey(row.displayName);
        haystack += fieldSeparator;
        haystack += foldedSearchKey(row.summary);
        for (const QString& alias : row.aliases) {
            haystack += fieldSeparator;
            haystack += foldedSearchKey(alias);
        }
        m_haystacks.push_back(std::move(haystack));
    }

    const std::vector<int> ranks = nameRanks(m_rows);
    for (const HomebrewSortOption option : allSortOptions) {
        std::vector<int>& order = m_orders[static_cast<size_t>(option)];
        order.resize(count);
        std::iota(order.begin(), order.end(), 0);
        const auto rankOf = [&](int i) { return ranks[static_cast<size_t>(i)]; };
        switch (option) {
        case HomebrewSortOption::nameAscending:
            std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return rankOf(a) < rankOf(b); });
            break;
        case HomebrewSortOption::nameDescending:
            std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return rankOf(a) > rankOf(b); });
            break;
        default:
            std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
                const auto& ca = countFor(m_rows[a], option);
                const auto& cb = countFor(m_rows[b], option);
                if (ca.has_value() != cb.has_value())
                    return ca.has_value();
                if (ca && *ca != *cb)
                    return *ca > *cb;
                return rankOf(a) < rankOf(b);
            });
            break;
        }
    }
}

QList<HomebrewPackageSummary>
HomebrewCatalogIndex::filtered(const QString& query, HomebrewSortOption option, std::stop_token stop) const
{
    const std::vector<int>& sorted = order(option);
    QList<HomebrewPackageSummary> result;
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty()) {
        result.reserve(static_cast<qsizetype>(sorted.size()));
        for (const int i : sorted)
            result.append(m_rows[i]);
        return result;
    }

    const QString needle = foldedSearchKey(trimmed);
    const bool needleHasSeparator = needle.contains(fieldSeparator);
    const auto matches = [&](const QString& haystack) {
        if (!needleHasSeparator)
            return haystack.contains(needle, Qt::CaseSensitive);
        // A needle holding the separator itself must match inside one field.
        for (const auto field : QStringView(haystack).split(fieldSeparator))
            if (field.contains(needle, Qt::CaseSensitive))
                return true;
        return false;
    };

    size_t visited = 0;
    for (const int i : sorted) {
        if ((++visited & 1023u) == 0 && stop.stop_requested())
            return {};
        if (matches(m_haystacks[static_cast<size_t>(i)]))
            result.append(m_rows[i]);
    }
    return result;
}

} // namespace quillbay
