#pragma once

#include <QByteArray>
#include <QDir>
#include <QMap>
#include <QString>
#include <QStringList>

namespace quillbay::test {

// One item of a folder tree, read without following links.
struct ItemState
{
    char kind = '?'; // 'f' file, 'd' folder, 'l' link, 'o' other
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0; // not compared for folders, whose size a listing change moves
    qint64 allocated = 0;
    QByteArray content; // file hash or link target

    bool sameAs(const ItemState& other) const
    {
        return kind == other.kind && device == other.device && inode == other.inode
            && (kind == 'd' || size == other.size) && content == other.content;
    }
};

// Every item below `folder` by its relative path, no link followed; items at or below an
// absolute path in `excluded` are left out.
using TreeState = QMap<QString, ItemState>;
TreeState captureTree(const QString& folder, const QStringList& excluded = {});
// lstat succeeds: the path names something, a dangling link included.
bool pathExists(const QString& path);

inline bool isAtOrBelow(const QString& path, const QString& folder)
{
    return path == folder || (path.startsWith(folder) && path.size() > folder.size() && path.at(folder.size()) == u'/');
}

} // namespace quillbay::test
