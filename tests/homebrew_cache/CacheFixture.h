#pragma once

#include <QSet>
#include <QString>
#include <ostream>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"
#include "homebrew_cache/HomebrewCacheScanner.h"
#include "testsupport/TempTree.h"

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace quillbay::test {

// A Homebrew cache of real files, links and hard links below a temporary home, plus a
// folder beside the home that plays "outside".
class CacheFixture
{
public:
    static constexpr auto displayPath = "~/Library/Caches/Homebrew";

    explicit CacheFixture(const QString& relativeRoot = QStringLiteral("home/Library/Caches/Homebrew"));

    QString root() const { return m_root; }
    QString path(const QString& relative) const { return m_root + QLatin1Char('/') + relative; }
    QString outside(const QString& relative) const { return m_tree.path(QStringLiteral("outside/") + relative); }
    TempTree& tree() { return m_tree; }

    QString file(const QString& relative, qint64 bytes = 4096) { return m_tree.writeSizedFile(in(relative), bytes); }
    QString folder(const QString& relative) { return m_tree.mkdir(in(relative)); }
    QString link(const QString& relative, const QString& target) { return m_tree.symlink(in(relative), target); }
    QString hardlink(const QString& relative, const QString& existing)
    {
        return m_tree.hardlink(in(relative), in(existing));
    }
    QString outsideFile(const QString& relative, qint64 bytes = 4096)
    {
        return m_tree.writeSizedFile(QStringLiteral("outside/") + relative, bytes);
    }
    bool exists(const QString& relative) const { return m_tree.exists(in(relative)); }

    HomebrewCacheScanner scanner() const { return HomebrewCacheScanner(m_root, QLatin1String(displayPath)); }
    // Fails the test when the scan itself fails.
    std::vector<HomebrewCacheEntry> scan() const;

private:
    QString in(const QString& relative) const { return m_relativeRoot + QLatin1Char('/') + relative; }

    QString m_relativeRoot;
    TempTree m_tree;
    QString m_root;
};

const HomebrewCacheEntry* findEntry(const std::vector<HomebrewCacheEntry>& entries, const QString& id);
QStringList entryIds(const std::vector<HomebrewCacheEntry>& entries);
QSet<QString> pathSet(const QStringList& paths);
// Allocated bytes of every item under `folder`, each inode once (QDirIterator and lstat,
// independent of the scanner).
qint64 allocatedBytesBelow(const QString& folder);

} // namespace quillbay::test
