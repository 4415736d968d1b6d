#pragma once

#include <QString>
#include <optional>

namespace quillbay {

class HomebrewCacheCleanupStore;

// The "Cleanup" section of the Homebrew settings tab, as plain values, so that the
// settings page only lays it out and wires the one button to the store.
struct HomebrewCacheSettingsSectionData
{
    enum class Action {
        choose, // runs chooseRoot
        removeAuthorization, // runs removeAuthorization; destructive
    };

    QString title;
    QString footer;
    QString folderLabel;
    QString folderText; // the folder's path, or "Not Selected"
    bool hasFolder = false;
    std::optional<QString> errorMessage;
    Action action = Action::choose;
    QString actionTitle;
    bool actionEnabled = true;

    static HomebrewCacheSettingsSectionData from(const HomebrewCacheCleanupStore& store);
};

} // namespace quillbay
