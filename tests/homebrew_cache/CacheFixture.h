#pragma once

#include <QSet>
#include <QString>
#include <ostream>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"
#include "homebrew_cache/HomebrewCacheScanner.h"
#include "testsupport/TempTree.h"

// Readable failure messages for the Qt text type.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace quillbay::test {

// A Homebrew cache folder at its usual place below a temporary home, built from real
// files, links and hard links, plus a folder beside the home that plays "outside".
class CacheFixture
{
public:
    static constexpr auto displayPath = "~/Library/Caches/Homebrew";

    // The cache below the temporary folder at `relativeRoot` (the platform's place for a
    // home at "home" is "home/.cache/Homebrew").
    explicit CacheFixture(const QString& relativeRoot = QStringLiteral("home/Library/Caches/Homebrew"));

    QString root() const { return m_root; }
    QString path(const QString& relative) const { return m_root + QLatin1Char('/') + relative; }
    QString outside(const QString& relative) const { return m_tree.path(QStringLiteral("outside/") + relative); }
    TempTree& tree() { return m_tree; }

    QString file(const QString& relative, qint64 bytes = 4096);
    QString folder(const QString& relative);
    QString link(const QString& relative, const QString& target);
    QString hardlink(const QString& relative, const QString& existingRelative);
    QString outsideFile(const QString& relative, qint64 bytes = 4096);
    bool exists(const QString& relative) const;

    HomebrewCacheScanner scanner() const { return HomebrewCacheScanner(m_root, QLatin1String(displayPath)); }
    // Fails the test when the scan itself fails.
    std::vector<HomebrewCacheEntry> scan() const;

private:
    QString m_relativeRoot;
    TempTree m_tree;
    QString m_root;
};

const HomebrewCacheEntry* findEntry(const std::vector<HomebrewCacheEntry>& entries, const QString& id);
QStringList entryIds(const std::vector<HomebrewCacheEntry>& entries);
QSet<QString> pathSet(const QStringList& paths);
// Allocated bytes of one item and its subtree, each inode once; -1 when it is missing.
qint64 allocatedTreeBytes(const QString& path);
// Allocated bytes of every file under `folder`, each inode once (independent of the
// scanner: QDirIterator and lstat).
qint64 allocatedBytesBelow(const QString& folder);

// Takes this thread's power to ignore file permissions away for the scope (root has it),
// so that an unreadable folder is unreadable. active() tells whether permissions now
// apply; when they cannot be made to, a test skips with the reason.
class PermissionsApply
{
public:
    PermissionsApply();
    ~PermissionsApply();
    PermissionsApply(const PermissionsApply&) = delete;
    PermissionsApply& operator=(const PermissionsApply&) = delete;
    bool active() const { return m_active; }

private:
    bool m_active = false;
    bool m_dropped = false;
};

} // namespace quillbay::test
