#pragma once

#include <QString>

namespace quillbay {

// Removes one item from the disk: a file, a symbolic link (the link itself, never what it
// points to) or a whole folder. Inside a folder, links are removed as links and never
// followed, even if one is swapped in while the removal runs, because every step works
// relative to an already opened folder and refuses to open a link as one.
class FileSystemRemoval
{
public:
    enum class Outcome {
        removed,
        // Nothing stood at the path: the item was gone before we came.
        absent,
        failed,
    };

    struct Result
    {
        Outcome outcome = Outcome::failed;
        // For `failed`: a user-facing reason naming the first item that could not go.
        QString message;
    };

    // Keeps going after a failure inside a folder, so as much as possible goes; the
    // result is `failed` when anything stayed.
    static Result removeItem(const QString& path);
};

} // namespace quillbay
