#include "homebrew_catalog/HomebrewCatalogIndex.h"

#include <QStringMatcher>
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

HomebrewCatalogIndex::HomebrewCatalogIndex(QList<HomebrewPackageSummary> list)
    : m_rows(std::make_shared<const QList<HomebrewPackageSummary>>(std::move(list)))
{
    const QList<HomebrewPackageSummary>& rows = *m_rows;
    const auto count = static_cast<size_t>(rows.size());
    m_rowStart.reserve(count + 1);
    for (const HomebrewPackageSummary& row : rows) {
        m_rowStart.push_back(m_text.size());
        m_text += foldedSearchKey(row.identifier);
        m_text += fieldSeparator;
        m_text += foldedSearchKey(row.displayName);
        m_text += fieldSeparator;
        m_text += foldedSearchKey(row.summary);
        for (const QString& alias : row.aliases) {
            m_text += fieldSeparator;
            m_text += foldedSearchKey(alias);
        }
        m_text += fieldSeparator;
    }
    m_rowStart.push_back(m_text.size());
    m_text.squeeze();

    const std::vector<int> ranks = nameRanks(rows);
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
                const auto& ca = countFor(rows[a], option);
                const auto& cb = countFor(rows[b], option);
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

HomebrewPackageList
HomebrewCatalogIndex::filtered(const QString& query, HomebrewSortOption option, std::stop_token stop) const
{
    const std::vector<int>& sorted = order(option);
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return HomebrewPackageList(m_rows, sorted);

    const QString needle = foldedSearchKey(trimmed);
    const auto count = m_rowStart.size() - 1;
    std::vector<char> matched(count, 0);
    if (!needle.contains(fieldSeparator)) {
        const QStringMatcher matcher(needle, Qt::CaseSensitive);
        size_t hits = 0;
        for (qsizetype from = 0; from < m_text.size();) {
            const qsizetype at = matcher.indexIn(m_text, from);
            if (at < 0)
                break;
            const auto next = std::upper_bound(m_rowStart.begin(), m_rowStart.end(), at);
            matched[static_cast<size_t>(next - m_rowStart.begin() - 1)] = 1;
            from = *next; // one hit per row is enough
            if ((++hits & 1023u) == 0 && stop.stop_requested())
                return {};
        }
    } else {
        // A needle holding the separator itself can only match inside one field.
        for (size_t row = 0; row < count; ++row) {
            const QStringView text = QStringView(m_text).mid(m_rowStart[row], m_rowStart[row + 1] - m_rowStart[row]);
            for (const auto field : text.split(fieldSeparator))
                if (field.contains(needle, Qt::CaseSensitive))
                    matched[row] = 1;
        }
    }

    std::vector<int> found;
    for (const int i : sorted)
        if (matched[static_cast<size_t>(i)])
            found.push_back(i);
    return HomebrewPackageList(m_rows, std::move(found));
}

} // namespace quillbay
