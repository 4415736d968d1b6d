#pragma once

#include <QString>
#include <optional>

namespace quillbay {

class Defaults;

enum class HomebrewCacheBookmarkError {
    couldNotCreateBookmark,
    couldNotResolveBookmark,
    accessDenied,
};

QString description(HomebrewCacheBookmarkError error);

// Keeps the user's authorization of the cache folder across launches as a folder
// bookmark in the defaults. Calls are short (a status and a defaults write) and run on
// the UI thread, which owns the defaults store.
class HomebrewCacheBookmarkService
{
public:
    static constexpr auto defaultKey = "homebrewCache.rootBookmark";

    struct Restored
    {
        std::optional<QString> path; // absent with no error: nothing was stored
        std::optional<HomebrewCacheBookmarkError> error;
    };

    HomebrewCacheBookmarkService(Defaults& defaults, QString bookmarkKey);

    // A stale bookmark (the folder was replaced) is renewed and stored again.
    Restored restoreRootURL();
    // The caller holds access to the folder.
    std::optional<HomebrewCacheBookmarkError> saveRootURL(const QString& path);
    void clearRootURL();

private:
    Defaults& m_defaults;
    QString m_bookmarkKey;
};

} // namespace quillbay
