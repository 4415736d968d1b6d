#pragma once

#include <QString>
#include <optional>
#include <variant>

#include "homebrew_installed/HomebrewInstallationBookmarkError.h"

namespace quillbay {

class Defaults;

// Keeps the authorized Homebrew root across launches as a folder bookmark under one key.
// Runs on its own executor while other stores write their keys from the UI thread: it
// touches only its own key, and QSettings locks its store for each read and write.
class HomebrewInstallationBookmarkService
{
public:
    // Nothing (no error) when no bookmark is stored.
    using RestoreOutcome = std::variant<std::optional<QString>, HomebrewInstallationBookmarkError>;

    HomebrewInstallationBookmarkService(Defaults& defaults, QString bookmarkKey);

    // Resolves the stored bookmark. A bookmark whose folder was replaced (stale) is renewed
    // under access and stored again before the path is returned.
    RestoreOutcome restoreRootURL();
    // The caller holds access to the folder.
    std::optional<HomebrewInstallationBookmarkError> saveRootURL(const QString& url);
    void clearRootURL();

    const QString& bookmarkKey() const { return m_bookmarkKey; }

private:
    Defaults& m_defaults;
    QString m_bookmarkKey;
};

} // namespace quillbay
