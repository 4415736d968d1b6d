#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

#include "homebrew_cache/HomebrewCacheBookmarkService.h"
#include "platform/UserPaths.h"

namespace quillbay {

class Defaults;
class Pickers;
class SavedSpaceStore;

// What the cache cleanup needs from the rest of the program. The application fills it
// once at start; tests fill it with a temporary home, an INI defaults file and scripted
// pickers.
struct HomebrewCacheCleanupServices
{
    Defaults& defaults; // the bookmark and the "Don't ask again" choice
    SavedSpaceStore& savedSpaceStore; // told the bytes of every deletion
    Pickers& pickers; // the folder panel
    UserPaths paths; // the one cache folder accepted, and how texts name it
    // Told of each fully successful cleanup, on the UI thread, with the time it ended.
    std::function<void(const QDateTime&)> recordSuccessfulAction;
    QString bookmarkKey = QLatin1String(HomebrewCacheBookmarkService::defaultKey);
};

} // namespace quillbay
