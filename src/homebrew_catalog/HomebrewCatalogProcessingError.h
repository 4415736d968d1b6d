#pragma once

#include <QString>

namespace quillbay {

// Why a manifest or snapshot was refused. It has no user-facing text: the store shows its
// own fixed message and logs description().
struct HomebrewCatalogProcessingError
{
    enum class Case {
        unsupportedSchemaVersion,
        invalidManifest,
        unexpectedCatalogKind,
        unexpectedByteCount,
        unexpectedPackageCount,
        checksumMismatch
    };

    Case kind = Case::invalidManifest;
    qint64 version = 0; // the schema version found, for unsupportedSchemaVersion

    friend bool operator==(const HomebrewCatalogProcessingError&, const HomebrewCatalogProcessingError&) = default;

    QString description() const
    {
        switch (kind) {
        case Case::unsupportedSchemaVersion:
            return QStringLiteral("HomebrewCatalogProcessingError.unsupportedSchemaVersion(%1)").arg(version);
        case Case::invalidManifest:
            return QStringLiteral("HomebrewCatalogProcessingError.invalidManifest");
        case Case::unexpectedCatalogKind:
            return QStringLiteral("HomebrewCatalogProcessingError.unexpectedCatalogKind");
        case Case::unexpectedByteCount:
            return QStringLiteral("HomebrewCatalogProcessingError.unexpectedByteCount");
        case Case::unexpectedPackageCount:
            return QStringLiteral("HomebrewCatalogProcessingError.unexpectedPackageCount");
        case Case::checksumMismatch:
            return QStringLiteral("HomebrewCatalogProcessingError.checksumMismatch");
        }
        return {};
    }
};

} // namespace quillbay
