#pragma once

#include <QList>
#include <QString>
#include <array>
#include <stop_token>
#include <vector>

#include "homebrew_catalog/HomebrewPackageSummary.h"
#include "homebrew_catalog/HomebrewSortOption.h"

namespace quillbay {

// One catalog with everything a keystroke needs computed once: a folded search text per
// row and, for every sort option, the stable order of all rows. Filtering then is one
// pass over a precomputed order: a stable sort of the matching rows keeps exactly the
// relative order that the stable sort of all rows has, so the pass gives the sorted
// result without sorting. Immutable after construction, so threads may share it.
class HomebrewCatalogIndex
{
public:
    HomebrewCatalogIndex() = default;
    explicit HomebrewCatalogIndex(QList<HomebrewPackageSummary> rows);

    const QList<HomebrewPackageSummary>& rows() const { return m_rows; }
    qsizetype size() const { return m_rows.size(); }

    // The rows that contain the query (trimmed; case and diacritics ignored) in their
    // identifier, display name, summary or an alias, in the order of the option. A stop
    // request ends the pass early with an empty list, which the caller drops.
    QList<HomebrewPackageSummary>
    filtered(const QString& query, HomebrewSortOption option, std::stop_token stop = {}) const;

private:
    const std::vector<int>& order(HomebrewSortOption option) const { return m_orders[static_cast<size_t>(option)]; }

    QList<HomebrewPackageSummary> m_rows;
    // Folded identifier, display name, summary and aliases joined by U+0000, which
    // folding never produces, so a match cannot span two fields.
    std::vector<QString> m_haystacks;
    std::array<std::vector<int>, 5> m_orders;
};

} // namespace quillbay
