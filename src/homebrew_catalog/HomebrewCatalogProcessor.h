#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <stop_token>

#include "homebrew_catalog/HomebrewCatalogIndex.h"
#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_catalog/HomebrewCatalogManifest.h"
#include "homebrew_catalog/HomebrewError.h"
#include "homebrew_catalog/HomebrewPackageSummary.h"
#include "homebrew_catalog/HomebrewSortOption.h"

namespace quillbay {

// Checks the catalog documents and turns a snapshot into rows. Stateless and free of side
// effects, so any thread may call it; snapshot work is meant for worker threads.
class HomebrewCatalogProcessor
{
public:
    // Decodes a manifest and checks its schema, snapshot id and both artifacts.
    HomebrewResult<HomebrewCatalogManifest> validatedManifest(const QByteArray& bytes) const;

    // Size first, then SHA-256, then the JSON: a truncated or altered snapshot costs no parse.
    HomebrewStatus validateSnapshot(const QByteArray& bytes,
                                    HomebrewCatalogKind expectedKind,
                                    const QString& sha256,
                                    qint64 byteCount,
                                    qint64 packageCount) const;

    // The same checks, then the packages as rows of the expected kind, in snapshot order.
    HomebrewResult<QList<HomebrewPackageSummary>> summaries(HomebrewCatalogKind expectedKind,
                                                            const QByteArray& bytes,
                                                            const QString& sha256,
                                                            qint64 byteCount,
                                                            qint64 packageCount) const;

    // The matching rows, stably sorted by the option. The second form reuses the keys of
    // an index built once per catalog, which is what makes a keystroke cheap.
    QList<HomebrewPackageSummary>
    filtered(const QList<HomebrewPackageSummary>& rows, const QString& query, HomebrewSortOption option) const;
    QList<HomebrewPackageSummary> filtered(const HomebrewCatalogIndex& index,
                                           const QString& query,
                                           HomebrewSortOption option,
                                           std::stop_token stop = {}) const;

    // Lower-case hexadecimal SHA-256 of the bytes.
    static QString sha256Hex(const QByteArray& bytes);
};

} // namespace quillbay
