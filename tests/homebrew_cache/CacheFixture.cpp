#include "CacheFixture.h"

#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <algorithm>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quillbay::test {

CacheFixture::CacheFixture(const QString& relativeRoot)
    : m_relativeRoot(relativeRoot)
    , m_root(m_tree.mkdir(relativeRoot))
{
    m_tree.mkdir(QStringLiteral("outside"));
}

std::vector<HomebrewCacheEntry> CacheFixture::scan() const
{
    const HomebrewCacheScanResult result = scanner().scan(m_root);
    EXPECT_FALSE(result.failure.has_value()) << (result.failure ? qPrintable(result.failure->description) : "");
    return result.entries;
}

const HomebrewCacheEntry* findEntry(const std::vector<HomebrewCacheEntry>& entries, const QString& id)
{
    const auto it = std::find_if(entries.begin(), entries.end(), [&](const auto& e) { return e.id == id; });
    return it == entries.end() ? nullptr : &*it;
}

QStringList entryIds(const std::vector<HomebrewCacheEntry>& entries)
{
    QStringList ids;
    for (const HomebrewCacheEntry& entry : entries)
        ids << entry.id;
    return ids;
}

QSet<QString> pathSet(const QStringList& paths)
{
    return QSet<QString>(paths.cbegin(), paths.cend());
}

qint64 allocatedBytesBelow(const QString& folder)
{
    QHash<QPair<quint64, quint64>, bool> seen;
    qint64 total = 0;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        struct stat st
        {
        };
        if (::lstat(QFile::encodeName(it.next()).constData(), &st) != 0)
            continue;
        if (!std::exchange(seen[{quint64(st.st_dev), quint64(st.st_ino)}], true))
            total += qint64(st.st_blocks) * 512;
    }
    return total;
}

} // namespace quillbay::test
