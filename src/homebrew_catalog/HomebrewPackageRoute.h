#pragma once

#include <QHashFunctions>
#include <QString>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay {

// Names one package; the key of every per-package table.
struct HomebrewPackageRoute
{
    HomebrewCatalogKind kind = HomebrewCatalogKind::formula;
    QString identifier;

    friend bool operator==(const HomebrewPackageRoute&, const HomebrewPackageRoute&) = default;

    // "formula:wget", the form used in messages.
    QString description() const { return rawValue(kind) + u':' + identifier; }
};

inline size_t qHash(const HomebrewPackageRoute& route, size_t seed = 0)
{
    return qHashMulti(seed, static_cast<int>(route.kind), route.identifier);
}

} // namespace quillbay
