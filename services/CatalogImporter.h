#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace quillbay::services {

// Builds a snapshot set from Homebrew's public API documents and install analytics and
// publishes it under a data folder.
//
// Input folder:
//   formula.json           an array of formula documents (formulae.brew.sh/api/formula.json)
//   formula/*.json         single formula documents, read after the array
//   cask.json, cask/*.json the same for casks
//   analytics/install-{30d,90d,365d}*.json and analytics/cask-install-{30d,90d,365d}*.json
//                          install analytics, whose counts are text with digit separators
//
// The set is written to a staging folder, moved into sets/<id> and then made current by
// replacing the "current" link in one rename, so the server never sees half a set. Only
// the newest two sets are kept: a client that read the previous manifest a moment ago can
// still fetch its snapshots.
class CatalogImporter
{
public:
    struct Options
    {
        QString inputDir;
        QString dataDir;
        // Empty: derived from generatedAt.
        QString snapshotID;
        QDateTime generatedAt = QDateTime::currentDateTimeUtc();
    };

    struct Result
    {
        bool ok = false;
        QString error;
        QString snapshotID;
        int formulaCount = 0;
        int caskCount = 0;
        // Documents left out (unreadable, nameless, duplicate), one line each.
        QStringList warnings;
    };

    static Result run(const Options& options);

    // "1,444,028" -> 1444028; anything that is not digits and separators gives -1.
    static qint64 parseCount(const QString& text);
};

} // namespace quillbay::services
