#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <memory>
#include <optional>

namespace quillbay {

// The desktop around the program: opening addresses, showing files, finding and listing
// applications. Stores take it by reference so tests can record what was asked.
class Workspace
{
public:
    virtual ~Workspace() = default;

    virtual bool openUrl(const QUrl& url) = 0;
    // Shows the items selected in the file manager; falls back to opening their folder.
    virtual bool revealFiles(const QStringList& paths) = 0;
    // The installed application with this identifier (a desktop-file id here, a bundle
    // identifier on macOS), as a path.
    virtual std::optional<QString> applicationPath(const QString& identifier) = 0;
    // Identifiers (executable names here) of the applications running now.
    virtual QStringList runningApplicationIdentifiers() = 0;
    // Opens a terminal window in the folder; false when no terminal could be started.
    virtual bool openTerminal(const QString& folder) = 0;
    // Starts and brings forward the application that applicationPath found. Gives the
    // system's description of the failure when it could not be started.
    virtual std::optional<QString> openApplication(const QString& applicationPath);

    // The real desktop of this platform.
    static std::unique_ptr<Workspace> createSystem();
};

} // namespace quillbay
