#include "homebrew_cache/HomebrewCacheSettingsSectionData.h"

#include <QCoreApplication>

#include "homebrew_cache/HomebrewCacheCleanupStore.h"

namespace quillbay {

HomebrewCacheSettingsSectionData HomebrewCacheSettingsSectionData::from(const HomebrewCacheCleanupStore& store)
{
    const auto tr = [](const char* text) { return QCoreApplication::translate("HomebrewCache", text); };
    HomebrewCacheSettingsSectionData data;
    data.title = tr("Cleanup");
    data.footer = tr("The app only scans and deletes selected contents inside %1. Changing or removing "
                     "authorization does not delete cache files.")
                      .arg(store.displayPath());
    data.folderLabel = tr("Cache Folder");
    data.hasFolder = store.isAuthorized();
    data.folderText = store.rootPath().value_or(tr("Not Selected"));
    data.errorMessage = store.errorMessage();
    data.action = store.isAuthorized() ? Action::removeAuthorization : Action::choose;
    data.actionTitle = store.isAuthorized() ? tr("Remove Authorization") : tr("Choose");
    data.actionEnabled = !store.isScanning() && !store.isCleaning();
    return data;
}

} // namespace quillbay
