#include "RandomTrial.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <climits>
#include <cstdlib>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

namespace {

QString canonical(const QString& path)
{
    char buffer[PATH_MAX];
    if (!::realpath(QFile::encodeName(path).constData(), buffer))
        return {};
    return QFile::decodeName(buffer);
}

bool makeLink(const QString& target, const QString& at)
{
    return ::symlink(QFile::encodeName(target).constData(), QFile::encodeName(at).constData()) == 0;
}

bool isRealFolder(const QString& path)
{
    return QFileInfo(path).isDir() && !QFileInfo(path).isSymLink() && canonical(path) == path;
}

bool isAtOrBelow(const QString& path, const QString& folder)
{
    return path == folder || (path.startsWith(folder) && path.size() > folder.size() && path.at(folder.size()) == u'/');
}

// Every item below `folder`, no link followed; items at or below `excluded` are left out.
TreeState captureTree(const QString& folder, const QString& excluded = {})
{
    TreeState state;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QByteArray native = QFile::encodeName(path);
        struct stat st
        {
        };
        if ((!excluded.isEmpty() && isAtOrBelow(path, excluded)) || ::lstat(native.constData(), &st) != 0)
            continue;
        ItemState item {'o', quint64(st.st_dev), quint64(st.st_ino), st.st_size, qint64(st.st_blocks) * 512, {}};
        if (S_ISREG(st.st_mode)) {
            item.kind = 'f';
            QFile file(path);
            QCryptographicHash hash(QCryptographicHash::Sha1);
            item.content = file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : "unreadable";
        } else if (S_ISDIR(st.st_mode)) {
            item.kind = 'd';
        } else if (S_ISLNK(st.st_mode)) {
            item.kind = 'l';
            char target[4096];
            const ssize_t length = ::readlink(native.constData(), target, sizeof target);
            item.content = QByteArray(target, length > 0 ? qsizetype(length) : 0);
        }
        state.insert(path.mid(folder.size() + 1), item);
    }
    return state;
}

} // namespace

bool pathExists(const QString& path)
{
    struct stat st
    {
    };
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0;
}

void RandomTrial::run(const QString& rootRelative,
                      const QStringList& topFolders,
                      const std::function<Outcome(RandomTrial&)>& body)
{
    const char* seedText = std::getenv("QUILLBAY_PROPERTY_SEED");
    const char* treesText = std::getenv("QUILLBAY_PROPERTY_TREES");
    const quint64 seed = seedText ? std::strtoull(seedText, nullptr, 10) : 20240611;
    const int trees = treesText ? std::atoi(treesText) : 1000;
    // Both deleters log every refusal; thousands of trees would flood the output.
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    Outcome total;
    for (int i = 0; i < trees && !testing::Test::HasFailure(); ++i) {
        const std::string tree = std::to_string(seed + quint64(i));
        SCOPED_TRACE("tree seed " + tree + " (rebuild with QUILLBAY_PROPERTY_SEED=" + tree
                     + " QUILLBAY_PROPERTY_TREES=1)");
        RandomTrial trial(seed + quint64(i), rootRelative, topFolders);
        const Outcome outcome = body(trial);
        total.deleted += outcome.deleted;
        total.refused += outcome.refused;
    }
    qInstallMessageHandler(previous);
    if (trees >= 100) {
        EXPECT_GT(total.deleted, trees);
        EXPECT_GT(total.refused, trees / 10);
    }
}

RandomTrial::RandomTrial(quint64 seed, const QString& rootRelative, const QStringList& topFolders)
    : m_rng(seed)
    , m_topFolders(topFolders)
{
    m_base = canonical(m_tree.root());
    m_root = m_base + QLatin1Char('/') + rootRelative;
    m_outside = m_base + QStringLiteral("/outside");
    QDir().mkpath(m_root);
    QDir().mkpath(m_outside);
}

QString RandomTrial::makeFile(const QString& folder)
{
    // Sizes around the block size, so that block rounding shows in the byte counts.
    QByteArray bytes(chance(0.2) ? 0 : between(1, 12000), Qt::Uninitialized);
    for (char& c : bytes)
        c = static_cast<char>(m_rng());
    const QString path = folder + QLatin1Char('/') + newName(u'f');
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        ADD_FAILURE() << "cannot write " << path.toStdString();
    return path;
}

void RandomTrial::populateFolder(const QString& folder, int depth)
{
    for (int i = between(0, depth == 0 ? 6 : 4); i > 0; --i) {
        const int kind = between(0, 99);
        const QString path = folder + QLatin1Char('/') + newName(kind < 55 ? u'd' : kind < 82 ? u'l' : u'h');
        if (kind < 35) {
            m_rootItems << makeFile(folder);
            m_rootFiles << m_rootItems.last();
        } else if (kind < 55 && depth < 3) {
            QDir().mkdir(path);
            m_rootItems << path;
            m_rootFolders << path;
            populateFolder(path, depth + 1);
        } else if (kind >= 55 && kind < 77 && !(kind < 65 ? m_rootItems : m_outsideItems).isEmpty()) {
            // A link to something in or out of the root, relative or absolute; when it
            // leads out to a folder, paths through it are hostile.
            const QString target = any(kind < 65 ? m_rootItems : m_outsideItems);
            makeLink(chance(0.5) ? target : QDir(folder).relativeFilePath(target), path);
            m_rootItems << path;
            const QStringList inside = QDir(target).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
            if (kind >= 65 && QFileInfo(target).isDir() && !inside.isEmpty())
                m_linksOut.append({path, any(inside)});
        } else if (kind >= 77 && kind < 82) {
            makeLink(chance(0.5) ? m_root + QStringLiteral("/missing") : QStringLiteral("../nowhere/x"), path);
            m_rootItems << path;
        } else if (kind >= 82) {
            // A hard link to a file inside or outside the root.
            const QStringList& files = kind < 91 && !m_rootFiles.isEmpty() ? m_rootFiles : m_outsideFiles;
            if (!files.isEmpty()
                && ::link(QFile::encodeName(any(files)).constData(), QFile::encodeName(path).constData()) == 0) {
                m_rootItems << path;
                m_rootFiles << path;
            }
        }
    }
}

void RandomTrial::pickSelection(const QStringList& extraHostile)
{
    const auto addPick = [this](const QString& path, Role role) {
        const QString clean = QDir::cleanPath(path);
        m_picks << Pick {path, clean, QFileInfo(clean).fileName(), role};
    };
    for (int i = between(0, 6); i > 0 && !m_rootItems.isEmpty(); --i) {
        // The same item, sometimes spelled untidily.
        static const QString spellings[] = {QStringLiteral("/."), QStringLiteral("//"), QStringLiteral("/")};
        QString path = any(m_rootItems);
        const int spelling = between(0, 9);
        if (spelling < 2)
            path.insert(m_root.size(), spellings[spelling]);
        else if (spelling == 2)
            path += spellings[2];
        addPick(path, Role::benign);
    }
    if (chance(0.2) && !m_outsideItems.isEmpty())
        addPick(any(m_outsideItems), Role::hostile);
    if (chance(0.05))
        addPick(chance(0.5) ? m_root : m_root + QStringLiteral("/."), Role::hostile);
    if (chance(0.15) && !m_outsideItems.isEmpty()) {
        // Out through "..": the spelling starts inside the root.
        const QString from = m_rootFolders.isEmpty() || chance(0.3) ? m_root : any(m_rootFolders);
        addPick(from + QLatin1Char('/') + QDir(from).relativeFilePath(any(m_outsideItems)), Role::hostile);
    }
    if (chance(0.25) && !m_linksOut.isEmpty()) {
        const auto& [link, inside] = m_linksOut.at(between(0, static_cast<int>(m_linksOut.size()) - 1));
        addPick(link + QLatin1Char('/') + inside, Role::hostile);
    }
    for (const QString& path : extraHostile)
        addPick(path, Role::hostile);
    std::shuffle(m_picks.begin(), m_picks.end(), m_rng);
}

QString RandomTrial::outsideCopyOf(const QString& folder)
{
    // The same names as the folder, so that a guard that followed the link would find
    // something to delete; links are left out.
    const QString copy = m_outside + QLatin1Char('/') + newName(u'c');
    QDir().mkpath(copy);
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) {
        QFile file(copy + QLatin1Char('/') + info.fileName());
        if (info.isDir() && !info.isSymLink())
            QDir().rename(outsideCopyOf(info.filePath()), file.fileName());
        else if (!info.isSymLink() && file.open(QIODevice::WriteOnly))
            file.write(QByteArrayLiteral("precious"));
    }
    return copy;
}

void RandomTrial::prepare(const QStringList& extraHostile)
{
    for (int i = between(1, 3); i > 0; --i) {
        m_outsideItems << makeFile(m_outside);
        m_outsideFiles << m_outsideItems.last();
    }
    for (int i = between(1, 3); i > 0; --i) {
        const QString folder = m_outside + QLatin1Char('/') + newName(u'o');
        QDir().mkdir(folder);
        m_outsideItems << folder;
        for (int j = between(0, 3); j > 0; --j) {
            m_outsideItems << makeFile(folder);
            m_outsideFiles << m_outsideItems.last();
        }
    }
    for (const QString& name : std::as_const(m_topFolders)) {
        const QString path = m_root + QLatin1Char('/') + name;
        if (!chance(0.7) || !QDir().mkdir(path))
            continue;
        m_rootItems << path;
        m_rootFolders << path;
        if (chance(0.6))
            populateFolder(path, 1);
    }
    populateFolder(m_root, 0);
    pickSelection(extraHostile);
    // Races: picks whose parent folder is swapped at the moment the deleter reaches them;
    // the outside copies are made now so that the snapshot holds them.
    for (const Pick& pick : std::as_const(m_picks)) {
        const QString folder = QFileInfo(pick.clean).path();
        if (pick.role == Role::benign && chance(0.3) && folder != m_root && isRealFolder(folder)
            && !m_races.contains(pick.clean))
            m_races.insert(pick.clean, Race {folder, outsideCopyOf(folder), false});
    }
    m_outsideBefore = captureTree(m_base, m_root);
    m_rootBefore = captureRoot();
}

void RandomTrial::raceHook(const QString& path)
{
    const auto it = m_races.find(QDir::cleanPath(path));
    // Only a folder still standing where it stood, reached through real folders only.
    if (it == m_races.end() || it->fired || !isRealFolder(it->folder))
        return;
    const QString asideName = QFileInfo(it->folder).fileName() + QStringLiteral(".race");
    if (!QDir().rename(it->folder, QFileInfo(it->folder).path() + QLatin1Char('/') + asideName)
        || !makeLink(it->copy, it->folder))
        ADD_FAILURE() << "cannot swap " << it->folder.toStdString();
    m_swapped << it->folder;
    it->fired = true;
    const QString parent = QFileInfo(it->folder.mid(m_root.size() + 1)).path();
    m_asideToOriginal.insert(parent == QStringLiteral(".") ? asideName : parent + QLatin1Char('/') + asideName,
                             it->folder.mid(m_root.size() + 1));
}

TreeState RandomTrial::captureRoot() const
{
    const TreeState raw = captureTree(m_root);
    TreeState mapped;
    for (auto it = raw.cbegin(); it != raw.cend(); ++it) {
        // Undo every rename on the way: a folder set aside may hold another set aside.
        QString key = it.key();
        for (bool renamed = true; renamed;) {
            renamed = false;
            for (auto aside = m_asideToOriginal.cbegin(); aside != m_asideToOriginal.cend(); ++aside) {
                if (isAtOrBelow(key, aside.key())) {
                    key = aside.value() + key.mid(aside.key().size());
                    renamed = true;
                }
            }
        }
        // The link a race put in a folder's place is not part of the original tree.
        const auto originals = m_asideToOriginal.values();
        if (it->kind != 'l' || !originals.contains(key))
            mapped.insert(key, it.value());
    }
    return mapped;
}

void RandomTrial::expectSelectionHonoured(const QStringList& failureNames,
                                          bool coveredByAncestor,
                                          const QStringList& removableTopFolders) const
{
    const TreeState outside = captureTree(m_base, m_root);
    for (auto it = m_outsideBefore.cbegin(); it != m_outsideBefore.cend(); ++it) {
        const auto now = outside.constFind(it.key());
        EXPECT_TRUE(now != outside.cend() && now->sameAs(it.value())) << "changed outside: " << it.key().toStdString();
    }
    EXPECT_EQ(outside.size(), m_outsideBefore.size()) << "new items outside";
    EXPECT_TRUE(isRealFolder(m_root)) << "the root itself went";
    // Picks under a folder a race swapped depend on whether they came before the swap;
    // the picked item that set the race off must have been refused.
    QList<Pick> picks = m_picks;
    QSet<QString> allowedFailures;
    for (Pick& pick : picks) {
        for (auto race = m_races.cbegin(); race != m_races.cend(); ++race) {
            if (race->fired && isAtOrBelow(pick.clean, race->folder))
                pick.role = race.key() == pick.clean ? Role::hostile : Role::either;
        }
        if (pick.role != Role::benign)
            allowedFailures.insert(pick.name);
    }
    const auto picked = [&](const QString& path, const QString& except = {}) {
        return std::any_of(picks.begin(), picks.end(),
                           [&](const Pick& p) { return p.clean != except && isAtOrBelow(path, p.clean); });
    };
    const bool rootPicked = picked(m_root);
    for (const QString& name : failureNames)
        EXPECT_TRUE(allowedFailures.contains(name)) << "unexpected failure for " << name.toStdString();
    for (const Pick& pick : std::as_const(picks)) {
        SCOPED_TRACE("pick " + pick.path.toStdString() + " role " + std::to_string(int(pick.role)));
        // A hostile pick under another pick may go unreported: the other one covers it.
        if (pick.role == Role::hostile && !picked(pick.clean, pick.clean)) {
            EXPECT_TRUE(failureNames.contains(pick.name)) << "refused without a failure";
        }
        // The cache deleter plans the root itself first, and everything below goes with
        // it (refused) when the root was picked.
        if (pick.role == Role::benign && !(coveredByAncestor && rootPicked)) {
            EXPECT_FALSE(pathExists(pick.clean)) << "still there";
        }
    }
    // Nothing in the root changed but what the picks cover.
    const TreeState after = captureRoot();
    for (auto it = m_rootBefore.cbegin(); it != m_rootBefore.cend(); ++it) {
        const QString path = m_root + QLatin1Char('/') + it.key();
        const bool swapped
            = std::any_of(m_swapped.begin(), m_swapped.end(), [&](const QString& f) { return isAtOrBelow(path, f); });
        if (picked(path) || swapped || removableTopFolders.contains(it.key()))
            continue;
        const auto now = after.constFind(it.key());
        EXPECT_TRUE(now != after.cend() && now->sameAs(it.value())) << "unpicked item changed: " << path.toStdString();
    }
}

qint64 RandomTrial::goneBytes(bool eachIdentityOnce) const
{
    const TreeState after = captureRoot();
    QHash<QPair<quint64, quint64>, bool> counted;
    qint64 total = 0;
    for (auto it = m_rootBefore.cbegin(); it != m_rootBefore.cend(); ++it) {
        if (after.contains(it.key()))
            continue;
        if (eachIdentityOnce ? !std::exchange(counted[{it->device, it->inode}], true) : it->kind == 'f')
            total += it->allocated;
    }
    return total;
}

} // namespace quillbay::test
