#include "homebrew_cache/HomebrewCacheBookmarkService.h"

#include <QCoreApplication>

#include "foundation/Defaults.h"
#include "platform/FolderBookmark.h"

namespace quillbay {

QString description(HomebrewCacheBookmarkError error)
{
    switch (error) {
    case HomebrewCacheBookmarkError::couldNotCreateBookmark:
        return QCoreApplication::translate("HomebrewCache",
                                           "The Homebrew cache folder authorization could not be saved.");
    case HomebrewCacheBookmarkError::couldNotResolveBookmark:
        return QCoreApplication::translate("HomebrewCache",
                                           "The saved Homebrew cache folder authorization is no longer valid.");
    case HomebrewCacheBookmarkError::accessDenied:
        break;
    }
    return QCoreApplication::translate("HomebrewCache", "The Homebrew cache folder could not be accessed.");
}

HomebrewCacheBookmarkService::HomebrewCacheBookmarkService(Defaults& defaults, QString bookmarkKey)
    : m_defaults(defaults)
    , m_bookmarkKey(std::move(bookmarkKey))
{
}

HomebrewCacheBookmarkService::Restored HomebrewCacheBookmarkService::restoreRootURL()
{
    const QByteArray data = m_defaults.dataValue(m_bookmarkKey);
    if (data.isEmpty())
        return {};
    const auto resolved = FolderBookmark::resolve(data);
    if (!resolved)
        return {std::nullopt, HomebrewCacheBookmarkError::couldNotResolveBookmark};
    if (!resolved->isStale)
        return {resolved->path, std::nullopt};
    if (!FolderBookmark::startAccess(resolved->path))
        return {std::nullopt, HomebrewCacheBookmarkError::accessDenied};
    const QByteArray renewed = FolderBookmark::make(resolved->path);
    if (renewed.isEmpty()) {
        FolderBookmark::stopAccess(resolved->path);
        return {std::nullopt, HomebrewCacheBookmarkError::couldNotCreateBookmark};
    }
    m_defaults.setValue(m_bookmarkKey, renewed);
    FolderBookmark::stopAccess(resolved->path);
    return {resolved->path, std::nullopt};
}

std::optional<HomebrewCacheBookmarkError> HomebrewCacheBookmarkService::saveRootURL(const QString& path)
{
    const QByteArray data = FolderBookmark::make(path);
    if (data.isEmpty())
        return HomebrewCacheBookmarkError::couldNotCreateBookmark;
    m_defaults.setValue(m_bookmarkKey, data);
    return std::nullopt;
}

void HomebrewCacheBookmarkService::clearRootURL()
{
    m_defaults.remove(m_bookmarkKey);
}

} // namespace quillbay
