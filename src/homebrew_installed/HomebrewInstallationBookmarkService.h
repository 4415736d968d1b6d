#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <variant>

#include "homebrew_installed/HomebrewInstallationBookmarkError.h"

namespace quillbay {

// Turns the authorized Homebrew root into bookmark bytes and back. It works on plain
// values only: the store reads and writes the defaults key on the UI thread, which owns
// the defaults, and hands this service the bytes. Runs on its own executor, since
// resolving and renewing a bookmark touch the file system.
class HomebrewInstallationBookmarkService
{
public:
    struct Restored
    {
        // Absent when nothing was stored.
        std::optional<QString> path;
        // Present when the stored bookmark was stale and has been renewed: the caller
        // stores these bytes in place of the old ones.
        std::optional<QByteArray> renewedBookmark;
    };
    using RestoreOutcome = std::variant<Restored, HomebrewInstallationBookmarkError>;
    using BookmarkOutcome = std::variant<QByteArray, HomebrewInstallationBookmarkError>;

    // Resolves the stored bytes (nothing stored gives an empty Restored). A bookmark whose
    // folder was replaced is renewed under access before the path is returned.
    RestoreOutcome restoreRootURL(const std::optional<QByteArray>& storedBookmark) const;
    // The bytes to store for the folder; the caller holds access to it.
    BookmarkOutcome makeRootBookmark(const QString& url) const;
};

} // namespace quillbay
