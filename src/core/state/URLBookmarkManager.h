#pragma once

#include <QList>
#include <QString>

#include "core/state/URLBookmark.h"

namespace quillbay {

// The two lists of custom Xcode folders, each a JSON array of
// {"urlString": ..., "bookmarkData": base64} in the program's data folder.
// Stateless apart from that folder; UI thread.
class URLBookmarkManager
{
public:
    enum class File {
        customArchives,
        customDerivedData,
    };

    // `folder` holds the files; empty means the platform gave the program no data folder.
    explicit URLBookmarkManager(QString folder);

    static QString fileName(File file);
    QString filePath(File file) const;

    // Never fails: a missing file is an empty list, an unreadable one is logged and empty
    // (and left as it is on disk). Entries whose bookmark does not resolve stay, without
    // `url`. Stale bookmarks are renewed, and then the list is written back.
    QList<URLBookmark> load(File file) const;

    // Writes the whole list atomically. On failure returns false with a user-facing reason.
    bool save(const QList<URLBookmark>& list, File file, QString* error = nullptr) const;

private:
    QString m_folder;
};

} // namespace quillbay
