#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace quillbay {

// A persistent token for a folder the user picked, standing in for a security-scoped
// bookmark: the path plus the device and inode it had when picked. Where no sandbox
// exists, "access" is simply whether the folder can be read.
class FolderBookmark
{
public:
    struct Resolved
    {
        QString path;
        // Same path, different inode (or device): the folder was replaced; make a new
        // bookmark and store it.
        bool isStale = false;
    };

    // Empty when the folder does not exist or cannot be examined.
    static QByteArray make(const QString& folderPath, QString* error = nullptr);

    // Fails (with a reason) on malformed data or when nothing is at the path any more.
    static std::optional<Resolved> resolve(const QByteArray& bookmark, QString* error = nullptr);

    // Opens access; true when the folder is now readable. Pair every successful call
    // with stopAccess.
    static bool startAccess(const QString& folderPath);
    static void stopAccess(const QString& folderPath);

    // The folder is readable and, only then, writable.
    static bool canAccess(const QString& folderPath);
};

} // namespace quillbay
