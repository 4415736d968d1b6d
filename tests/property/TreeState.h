#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace quillbay::test {

// What one item of a folder tree is, read without following links.
struct ItemState
{
    char kind = '?'; // 'f' file, 'd' folder, 'l' link, 'o' other
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0; // st_size; not compared for folders, whose size a listing change moves
    qint64 allocated = 0; // st_blocks * 512
    QByteArray contentHash; // files only
    QByteArray linkTarget; // links only

    bool sameAs(const ItemState& other) const;
};

// Every item below `folder` keyed by its path relative to it, walked without following any
// link. Items at or below a path in `excluded` (absolute) are left out.
using TreeState = QMap<QString, ItemState>;
TreeState captureTree(const QString& folder, const QStringList& excluded = {});

// The differences between two captures, one line each, at most `limit` lines; empty when
// equal.
QStringList describeDifferences(const TreeState& before, const TreeState& after, int limit = 8);

// lstat succeeds: the path names something, a dangling link included.
bool pathExists(const QString& path);

// The lexical path with "." and ".." and repeated separators removed.
QString lexicallyClean(const QString& path);

// `path` equals `folder` or lies below it by whole components (lexically).
bool isAtOrBelow(const QString& path, const QString& folder);

} // namespace quillbay::test
