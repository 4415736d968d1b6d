#pragma once

#include <QString>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay {

// The small document that names one snapshot pair and pins each snapshot's size, hash and
// package count. Nothing in a snapshot is believed before it matches these values.
struct HomebrewCatalogManifest
{
    struct Source
    {
        QString name;
        QString url;
        friend bool operator==(const Source&, const Source&) = default;
    };

    struct Artifact
    {
        QString path;
        QString sha256;
        qint64 byteCount = 0;
        qint64 packageCount = 0;
        friend bool operator==(const Artifact&, const Artifact&) = default;
    };

    qint64 schemaVersion = 0;
    QString snapshotID;
    QString generatedAt;
    Source source;
    Artifact formula;
    Artifact cask;

    const Artifact& artifact(HomebrewCatalogKind kind) const
    {
        return kind == HomebrewCatalogKind::formula ? formula : cask;
    }

    friend bool operator==(const HomebrewCatalogManifest&, const HomebrewCatalogManifest&) = default;
};

} // namespace quillbay
