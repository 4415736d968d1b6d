#include "RandomTrial.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <climits>
#include <cstdlib>
#include <utility>

#include <gtest/gtest.h>
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

const char* roleName(RandomTrial::Role role)
{
    static const char* const names[] = {"benign", "absent", "hostile", "either"};
    return names[int(role)];
}

} // namespace

void RandomTrial::run(const QString& rootRelative,
                      const QStringList& topFolders,
                      const std::function<Outcome(RandomTrial&)>& body)
{
    quint64 seed = 20240611;
    int trees = 1000;
    if (const char* value = std::getenv("QUILLBAY_PROPERTY_SEED"))
        seed = std::strtoull(value, nullptr, 10);
    if (const char* value = std::getenv("QUILLBAY_PROPERTY_TREES"))
        trees = std::atoi(value);
    // Both deleters log every refusal; thousands of trees would flood the output.
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    Outcome total;
    for (int i = 0; i < trees; ++i) {
        const std::string tree = std::to_string(seed + quint64(i));
        SCOPED_TRACE("tree seed " + tree + " (rebuild with QUILLBAY_PROPERTY_SEED=" + tree
                     + " QUILLBAY_PROPERTY_TREES=1)");
        RandomTrial trial(seed + quint64(i), rootRelative, topFolders);
        const Outcome outcome = body(trial);
        total.deleted += outcome.deleted;
        total.refused += outcome.refused;
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "selection:\n" << trial.describe().toStdString();
            break;
        }
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

bool RandomTrial::chance(double probability)
{
    return std::uniform_real_distribution<double>(0, 1)(m_rng) < probability;
}

int RandomTrial::between(int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(m_rng);
}

QString RandomTrial::makeFile(const QString& folder)
{
    // Sizes around the block size, so that block rounding shows in the byte counts.
    const int size = chance(0.2) ? 0 : between(1, 12000);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& c : bytes)
        c = static_cast<char>(m_rng());
    const QString path = folder + QLatin1Char('/') + newName(u'f');
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != size)
        ADD_FAILURE() << "cannot write " << path.toStdString();
    return path;
}

void RandomTrial::populateFolder(const QString& folder, int depth)
{
    const int count = between(0, depth == 0 ? 6 : 4);
    for (int i = 0; i < count; ++i) {
        const int kind = between(0, 99);
        if (kind < 35) {
            const QString path = makeFile(folder);
            m_rootItems << path;
            m_rootFiles << path;
        } else if (kind < 55 && depth < 3) {
            const QString path = folder + QLatin1Char('/') + newName(u'd');
            QDir().mkdir(path);
            m_rootItems << path;
            m_rootFolders << path;
            populateFolder(path, depth + 1);
        } else if (kind < 65 && !m_rootItems.isEmpty()) {
            // A link to something in the root, relative or absolute.
            const QString target = any(m_rootItems);
            const QString path = folder + QLatin1Char('/') + newName(u'l');
            makeLink(chance(0.5) ? target : QDir(folder).relativeFilePath(target), path);
            m_rootItems << path;
        } else if (kind < 77 && !m_outsideItems.isEmpty()) {
            // A link out of the root; when it leads to a folder, paths through it are hostile.
            const QString target = any(m_outsideItems);
            const QString path = folder + QLatin1Char('/') + newName(u'l');
            makeLink(chance(0.5) ? target : QDir(folder).relativeFilePath(target), path);
            m_rootItems << path;
            if (QFileInfo(target).isDir()) {
                const QStringList inside = QDir(target).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
                if (!inside.isEmpty())
                    m_linksOut.append({path, any(inside)});
            }
        } else if (kind < 82) {
            const QString path = folder + QLatin1Char('/') + newName(u'l');
            makeLink(chance(0.5) ? m_root + QStringLiteral("/missing") : QStringLiteral("../nowhere/x"), path);
            m_rootItems << path;
        } else {
            // A hard link to a file inside or outside the root.
            const QStringList& files = kind < 91 && !m_rootFiles.isEmpty() ? m_rootFiles : m_outsideFiles;
            if (files.isEmpty())
                continue;
            const QString& existing = any(files);
            const QString path = folder + QLatin1Char('/') + newName(u'h');
            if (::link(QFile::encodeName(existing).constData(), QFile::encodeName(path).constData()) == 0) {
                m_rootItems << path;
                m_rootFiles << path;
            }
        }
    }
}

void RandomTrial::populate()
{
    for (int i = between(1, 3); i > 0; --i) {
        const QString path = makeFile(m_outside);
        m_outsideItems << path;
        m_outsideFiles << path;
    }
    for (int i = between(1, 3); i > 0; --i) {
        const QString folder = m_outside + QLatin1Char('/') + newName(u'o');
        QDir().mkdir(folder);
        m_outsideItems << folder;
        for (int j = between(0, 3); j > 0; --j) {
            const QString path = makeFile(folder);
            m_outsideItems << path;
            m_outsideFiles << path;
        }
    }
    for (const QString& name : std::as_const(m_topFolders)) {
        if (!chance(0.7))
            continue;
        const QString path = m_root + QLatin1Char('/') + name;
        QDir().mkdir(path);
        m_rootItems << path;
        m_rootFolders << path;
        if (chance(0.6))
            populateFolder(path, 1);
    }
    populateFolder(m_root, 0);
}

void RandomTrial::addPick(const QString& path, Role role)
{
    const QString clean = QDir::cleanPath(path);
    m_picks << Pick {path, clean, QFileInfo(clean).fileName(), role};
}

void RandomTrial::pickSelection(const QStringList& extraHostile)
{
    for (int i = between(0, 6); i > 0 && !m_rootItems.isEmpty(); --i) {
        QString path = any(m_rootItems);
        // The same item spelled untidily.
        const int spelling = between(0, 9);
        if (spelling == 0)
            path.insert(m_root.size(), QStringLiteral("/."));
        else if (spelling == 1)
            path.insert(m_root.size(), QStringLiteral("//"));
        else if (spelling == 2)
            path += QLatin1Char('/');
        addPick(path, Role::benign);
    }
    if (chance(0.15)) {
        const QString folder = m_rootFolders.isEmpty() || chance(0.3) ? m_root : any(m_rootFolders);
        addPick(folder + QLatin1Char('/') + newName(u'g'), Role::absent);
    }
    if (chance(0.2) && !m_outsideItems.isEmpty())
        addPick(any(m_outsideItems), Role::hostile);
    if (chance(0.05))
        addPick(chance(0.5) ? m_root : m_root + QStringLiteral("/."), Role::hostile);
    if (chance(0.15) && !m_outsideItems.isEmpty()) {
        // Out through "..": the spelling starts inside the root.
        const QString from = m_rootFolders.isEmpty() || chance(0.3) ? m_root : any(m_rootFolders);
        const QString target = any(m_outsideItems);
        addPick(from + QLatin1Char('/') + QDir(from).relativeFilePath(target), Role::hostile);
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
    const QStringList inside = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QString& name : inside) {
        const QFileInfo info(folder + QLatin1Char('/') + name);
        if (info.isSymLink())
            continue;
        if (info.isDir()) {
            const QString sub = outsideCopyOf(info.filePath());
            QDir().rename(sub, copy + QLatin1Char('/') + name);
        } else {
            QFile file(copy + QLatin1Char('/') + name);
            if (file.open(QIODevice::WriteOnly))
                file.write(QByteArrayLiteral("precious"));
        }
    }
    return copy;
}

void RandomTrial::prepare(const QStringList& extraHostile)
{
    populate();
    pickSelection(extraHostile);
    // Races: picks whose parent folder is swapped the same way at the moment the deleter
    // reaches them; the outside copies are made now so that the snapshot holds them.
    for (const Pick& pick : std::as_const(m_picks)) {
        if (pick.role != Role::benign || !chance(0.3))
            continue;
        const QString folder = QFileInfo(pick.clean).path();
        if (folder == m_root || !isRealFolder(folder) || m_races.contains(pick.clean))
            continue;
        m_races.insert(pick.clean, Race {folder, outsideCopyOf(folder), false});
    }
    m_outsideBefore = captureOutside();
    m_rootBefore = captureRoot();
}

void RandomTrial::raceHook(const QString& path)
{
    const auto it = m_races.find(QDir::cleanPath(path));
    if (it == m_races.end() || it->fired)
        return;
    // Only a folder still standing where it stood, reached through real folders only.
    if (!isRealFolder(it->folder))
        return;
    const QString asideName = QFileInfo(it->folder).fileName() + QStringLiteral(".race");
    if (!QDir().rename(it->folder, QFileInfo(it->folder).path() + QLatin1Char('/') + asideName)
        || !makeLink(it->copy, it->folder))
        ADD_FAILURE() << "cannot swap " << it->folder.toStdString();
    m_swapped << it->folder;
    it->fired = true;
    const QString relative = it->folder.mid(m_root.size() + 1);
    m_asideToOriginal.insert(QFileInfo(relative).path() == QStringLiteral(".")
                                 ? asideName
                                 : QFileInfo(relative).path() + QLatin1Char('/') + asideName,
                             relative);
}

TreeState RandomTrial::captureRoot() const
{
    const TreeState raw = captureTree(m_root);
    if (m_asideToOriginal.isEmpty())
        return raw;
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
        if (it->kind == 'l'
            && std::any_of(m_asideToOriginal.cbegin(), m_asideToOriginal.cend(),
                           [&](const QString& original) { return original == key; }))
            continue;
        mapped.insert(key, it.value());
    }
    return mapped;
}

void RandomTrial::expectSelectionHonoured(const QStringList& failureNames,
                                          bool coveredByAncestor,
                                          const QStringList& removableTopFolders) const
{
    const TreeState outside = captureOutside();
    for (auto it = m_outsideBefore.cbegin(); it != m_outsideBefore.cend(); ++it) {
        const auto now = outside.constFind(it.key());
        EXPECT_TRUE(now != outside.cend() && now->sameAs(it.value())) << "changed outside: " << it.key().toStdString();
    }
    EXPECT_EQ(outside.size(), m_outsideBefore.size()) << "new items outside";
    EXPECT_TRUE(isRealFolder(m_root)) << "the root itself went";
    QList<Pick> picks = m_picks;
    // Picks under a folder a race swapped depend on whether they came before the swap;
    // the picked item that set the race off must have been refused.
    for (Pick& pick : picks) {
        for (auto race = m_races.cbegin(); race != m_races.cend(); ++race) {
            if (!race->fired || !isAtOrBelow(pick.clean, race->folder))
                continue;
            pick.role = race.key() == pick.clean ? Role::hostile : Role::either;
        }
    }
    const auto hasSelectedAncestor = [&](const Pick& pick) {
        return std::any_of(picks.begin(), picks.end(), [&](const Pick& other) {
            return other.clean != pick.clean && isAtOrBelow(pick.clean, other.clean);
        });
    };
    const bool rootPicked = std::any_of(picks.begin(), picks.end(), [&](const Pick& p) { return p.clean == m_root; });

    QSet<QString> allowedFailures;
    for (const Pick& pick : std::as_const(picks)) {
        if (pick.role == Role::hostile || pick.role == Role::either)
            allowedFailures.insert(pick.name);
    }
    for (const QString& name : failureNames)
        EXPECT_TRUE(allowedFailures.contains(name)) << "unexpected failure for " << name.toStdString();
    for (const Pick& pick : std::as_const(picks)) {
        SCOPED_TRACE(std::string(roleName(pick.role)) + " pick " + pick.path.toStdString());
        switch (pick.role) {
        case Role::hostile:
            if (!hasSelectedAncestor(pick)) {
                EXPECT_TRUE(failureNames.contains(pick.name)) << "refused without a failure";
            }
            break;
        case Role::benign:
            // The cache deleter plans the root itself first, and everything below goes
            // with it (refused) when the root was picked.
            if (!(coveredByAncestor && rootPicked)) {
                EXPECT_FALSE(pathExists(pick.clean)) << "still there";
            }
            break;
        case Role::absent:
            EXPECT_FALSE(failureNames.contains(pick.name));
            break;
        case Role::either:
            break;
        }
    }

    // Nothing in the root changed but what the picks cover.
    const TreeState after = captureRoot();
    for (auto it = m_rootBefore.cbegin(); it != m_rootBefore.cend(); ++it) {
        const QString path = m_root + QLatin1Char('/') + it.key();
        const bool picked
            = std::any_of(picks.begin(), picks.end(), [&](const Pick& p) { return isAtOrBelow(path, p.clean); });
        const bool swapped
            = std::any_of(m_swapped.begin(), m_swapped.end(), [&](const QString& f) { return isAtOrBelow(path, f); });
        if (picked || swapped || removableTopFolders.contains(it.key()))
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

QString RandomTrial::describe() const
{
    QStringList lines;
    for (const Pick& pick : m_picks)
        lines << QStringLiteral("  %1 %2").arg(QLatin1String(roleName(pick.role)), pick.path);
    for (const QString& folder : m_swapped)
        lines << QStringLiteral("  swapped %1").arg(folder);
    return lines.join(u'\n');
}

} // namespace quillbay::test
