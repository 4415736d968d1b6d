#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace quillbay::test {

// A temporary folder tree built from real files, folders, links and hard links.
// Paths given to its methods are relative to root(). Everything is removed at the end,
// including folders a test made unreadable.
class TempTree
{
public:
    TempTree();
    ~TempTree();

    QString root() const { return m_dir.path(); }
    QString path(const QString& relative) const;

    // Creates the parent folders as needed. Returns the absolute path.
    QString mkdir(const QString& relative);
    QString writeFile(const QString& relative, const QByteArray& bytes);
    // A file of the given length whose blocks are really allocated (not sparse).
    QString writeSizedFile(const QString& relative, qint64 bytes);
    // A symbolic link at `relative` whose content is `target`, as given (relative or absolute).
    QString symlink(const QString& relative, const QString& target);
    QString hardlink(const QString& relative, const QString& existingRelative);
    // Changes permissions, e.g. 0 to make a folder unlistable. Restored before removal.
    void chmod(const QString& relative, int mode);

    bool exists(const QString& relative) const;
    // Allocated bytes (st_blocks * 512) of one item, without following links.
    static qint64 allocatedBytes(const QString& absolutePath);

private:
    QTemporaryDir m_dir;
    QStringList m_chmodded;
};

} // namespace quillbay::test
