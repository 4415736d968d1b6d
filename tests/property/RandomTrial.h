#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <random>

#include "testsupport/TempTree.h"

namespace quillbay::test {

// One item of a folder tree, read without following links: kind 'f', 'd', 'l' or 'o',
// file identity, sizes and a file hash or link target.
struct ItemState
{
    char kind = '?';
    quint64 device = 0, inode = 0;
    qint64 size = 0, allocated = 0;
    QByteArray content;

    // A folder's size moves with its listing, so it is not compared.
    bool sameAs(const ItemState& o) const
    {
        return kind == o.kind && device == o.device && inode == o.inode && (kind == 'd' || size == o.size)
            && content == o.content;
    }
};
using TreeState = QMap<QString, ItemState>; // by path relative to the captured folder
bool pathExists(const QString& path); // lstat: a dangling link exists

// One randomly built world for a deleter: an authorized root of files, folders, links
// (inside, out of the root, dangling) and hard links (to files inside and outside), a
// folder beside it that must come through untouched, and a random selection, some of it
// hostile. The same seed builds the same world.
class RandomTrial
{
public:
    enum class Role {
        benign, // a real item inside the root, reached through real folders: must go
        hostile, // outside, the root itself, or reached through a link out: must be refused
        either, // under a folder a race swapped: depends on the order of removal
    };
    struct Pick
    {
        QString path, clean, name; // as handed to the deleter (maybe untidy), clean, last component
        Role role = Role::benign;
    };
    struct Outcome
    {
        int deleted = 0, refused = 0;
    };

    // Runs `body` over QUILLBAY_PROPERTY_TREES trees (default 1000) from
    // QUILLBAY_PROPERTY_SEED, stopping at the first failing one; over a long run both
    // outcomes must occur, or the property says little.
    static void
    run(const QString& rootRelative, const QStringList& topFolders, const std::function<Outcome(RandomTrial&)>& body);

    bool chance(double probability) { return std::uniform_real_distribution<double>(0, 1)(m_rng) < probability; }
    int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_rng); }
    QString base() const { return m_base; }
    QString root() const { return m_root; }
    const QList<Pick>& picks() const { return m_picks; }

    // Fills the tree, picks the selection (`extraHostile` must be refused too), chooses
    // races, and snapshots the tree.
    void prepare(const QStringList& extraHostile = {});
    // From the deleter's hook for every path it is about to act on: a chosen pick's folder
    // becomes a link to a copy of it outside the root.
    void raceHook(const QString& path);
    // Nothing outside changed, every pick went or was refused as its role says, nothing
    // unpicked changed (`removableTopFolders` may vanish). `coveredByAncestor`: a deleter
    // that plans the root first takes everything below it.
    void expectSelectionHonoured(const QStringList& failureNames,
                                 bool coveredByAncestor,
                                 const QStringList& removableTopFolders = {}) const;
    // Bytes that left the root: each file identity once, or else every regular file path.
    qint64 goneBytes(bool eachIdentityOnce) const;

private:
    RandomTrial(quint64 seed, const QString& rootRelative, const QStringList& topFolders);

    QString newName(QChar kind) { return kind + QString::number(++m_counter); }
    const QString& any(const QStringList& list) { return list.at(between(0, int(list.size()) - 1)); }
    QString makeFile(const QString& folder);
    void populateFolder(const QString& folder, int depth);
    void pickSelection(const QStringList& extraHostile);
    QString outsideCopyOf(const QString& folder);
    TreeState captureRoot() const; // with the race renames undone

    struct Race
    {
        QString folder, copy;
        bool fired = false;
    };

    std::mt19937_64 m_rng;
    TempTree m_tree;
    QString m_base, m_root, m_outside;
    QStringList m_topFolders;
    int m_counter = 0;
    QStringList m_rootItems; // every item made in the root, through real folders only
    QStringList m_rootFolders, m_rootFiles, m_outsideItems, m_outsideFiles;
    QList<QPair<QString, QString>> m_linksOut; // link in the root -> an item in its target folder
    QList<Pick> m_picks;
    QStringList m_swapped; // folders a race replaced by links
    QHash<QString, QString> m_asideToOriginal; // race renames, relative to the root
    QHash<QString, Race> m_races; // by the clean path of the picked item
    TreeState m_outsideBefore, m_rootBefore;
};

} // namespace quillbay::test
