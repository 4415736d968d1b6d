#include "homebrew_installed/HomebrewInstallationBookmarkService.h"

#include "foundation/Defaults.h"
#include "platform/FolderBookmark.h"

namespace quillbay {

HomebrewInstallationBookmarkService::HomebrewInstallationBookmarkService(Defaults& defaults, QString bookmarkKey)
    : m_defaults(defaults)
    , m_bookmarkKey(std::move(bookmarkKey))
{
}

HomebrewInstallationBookmarkService::RestoreOutcome HomebrewInstallationBookmarkService::restoreRootURL()
{
    if (!m_defaults.contains(m_bookmarkKey))
        return std::optional<QString> {};
    // A value of another type reads as empty data, which fails to resolve like any other
    // damaged bookmark, so the store can drop it.
    const auto resolved = FolderBookmark::resolve(m_defaults.dataValue(m_bookmarkKey));
    if (!resolved)
        return HomebrewInstallationBookmarkError::couldNotResolveBookmark;
    if (!resolved->isStale)
        return std::optional<QString> {resolved->path};

    if (!FolderBookmark::startAccess(resolved->path))
        return HomebrewInstallationBookmarkError::accessDenied;
    const QByteArray renewed = FolderBookmark::make(resolved->path);
    if (renewed.isEmpty()) {
        FolderBookmark::stopAccess(resolved->path);
        return HomebrewInstallationBookmarkError::couldNotCreateBookmark;
    }
    m_defaults.setValue(m_bookmarkKey, renewed);
    FolderBookmark::stopAccess(resolved->path);
    return std::optional<QString> {resolved->path};
}

std::optional<HomebrewInstallationBookmarkError> HomebrewInstallationBookmarkService::saveRootURL(const QString& url)
{
    const QByteArray data = FolderBookmark::make(url);
    if (data.isEmpty())
        return HomebrewInstallationBookmarkError::couldNotCreateBookmark;
    m_defaults.setValue(m_bookmarkKey, data);
    return std::nullopt;
}

void HomebrewInstallationBookmarkService::clearRootURL()
{
    m_defaults.remove(m_bookmarkKey);
}

} // namespace quillbay
