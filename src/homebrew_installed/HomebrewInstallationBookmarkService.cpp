#include "homebrew_installed/HomebrewInstallationBookmarkService.h"

#include "platform/FolderBookmark.h"

namespace quillbay {

HomebrewInstallationBookmarkService::RestoreOutcome
HomebrewInstallationBookmarkService::restoreRootURL(const std::optional<QByteArray>& storedBookmark) const
{
    if (!storedBookmark)
        return Restored {};
    // A value of another type reaches here as empty data, which fails to resolve like any
    // other damaged bookmark, so the store can drop it.
    const auto resolved = FolderBookmark::resolve(*storedBookmark);
    if (!resolved)
        return HomebrewInstallationBookmarkError::couldNotResolveBookmark;
    if (!resolved->isStale)
        return Restored {resolved->path, std::nullopt};

    if (!FolderBookmark::startAccess(resolved->path))
        return HomebrewInstallationBookmarkError::accessDenied;
    const QByteArray renewed = FolderBookmark::make(resolved->path);
    FolderBookmark::stopAccess(resolved->path);
    if (renewed.isEmpty())
        return HomebrewInstallationBookmarkError::couldNotCreateBookmark;
    return Restored {resolved->path, renewed};
}

HomebrewInstallationBookmarkService::BookmarkOutcome
HomebrewInstallationBookmarkService::makeRootBookmark(const QString& url) const
{
    const QByteArray data = FolderBookmark::make(url);
    if (data.isEmpty())
        return HomebrewInstallationBookmarkError::couldNotCreateBookmark;
    return data;
}

} // namespace quillbay
