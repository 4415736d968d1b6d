#pragma once

#include <QList>
#include <QString>
#include <array>
#include <stop_token>
#include <vector>

#include "homebrew_catalog/HomebrewPackageList.h"
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

    const QList<HomebrewPackageSummary>& rows() const { return *m_rows; }
    qsizetype size() const { return m_rows->size(); }

    // The rows that contain the query (trimmed; case and diacritics ignored) in their
    // identifier, display name, summary or an alias, in the order of the option. A stop
    // request ends the pass early with an empty list, which the caller drops.
    HomebrewPackageList filtered(const QString& query, HomebrewSortOption option, std::stop_token stop = {}) const;

private:
    const std::vector<int>& order(HomebrewSortOption option) const { return m_orders[static_cast<size_t>(option)]; }

    HomebrewPackageList::Rows m_rows = std::make_shared<const QList<HomebrewPackageSummary>>();
    // Every row's folded identifier, display name, summary and aliases, fields and rows
    // joined by U+0000, which folding never produces: a match cannot span two fields, and
    // one pass of a string matcher over this text searches the whole catalog.
    QString m_text;
    // Where each row's text begins; one entry more than rows, the last is the text's end.
    std::vector<qsizetype> m_rowStart;
    std::array<std::vector<int>, 5> m_orders;
};

} // namespace quillbay
