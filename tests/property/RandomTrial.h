#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <random>

#include "TreeState.h"
#include "testsupport/TempTree.h"

namespace quillbay::test {

// One randomly built world for a deleter: an authorized root filled with files, folders,
// links (inside, out of the root, dangling) and hard links (to files inside and outside),
// a folder beside it that must come through untouched, and a random selection of paths,
// some of them hostile. The same seed builds the same world.
class RandomTrial
{
public:
    enum class Role {
        benign, // a real item inside the root, reached through real folders: must go
        absent, // names nothing: neither deleted nor failed
        hostile, // outside, the root itself, or reached through a link out: must be refused
        either, // under a folder a race swapped: depends on the order of removal
    };

    struct Pick
    {
        QString path; // as handed to the deleter, possibly not clean
        QString clean;
        QString name; // the last component of the clean path
        Role role = Role::benign;
    };

    struct Outcome
    {
        int deleted = 0;
        int refused = 0;
    };

    // Builds the run's trees (QUILLBAY_PROPERTY_TREES, default 1000, from
    // QUILLBAY_PROPERTY_SEED) with the root at `rootRelative` and `topFolders` at its top
    // level, and hands each to `body`. Stops at the first failing tree, naming its seed;
    // over a long run both outcomes must occur, or the property says little.
    static void
    run(const QString& rootRelative, const QStringList& topFolders, const std::function<Outcome(RandomTrial&)>& body);

    bool chance(double probability);
    int between(int low, int high); // inclusive
    QString base() const { return m_base; }
    QString root() const { return m_root; }
    const QList<Pick>& picks() const { return m_picks; }

    // Fills the tree, picks the selection (`extraHostile` must be refused too), chooses
    // races, and snapshots the tree.
    void prepare(const QStringList& extraHostile = {});
    // Called from the deleter's test hook for every path it is about to act on: a chosen
    // pick's folder becomes a link to a copy of it outside the root.
    void raceHook(const QString& path);

    // After the deletion: nothing outside changed, every pick went or was refused as its
    // role says, nothing unpicked changed (`removableTopFolders` may vanish when empty).
    // `coveredByAncestor`: a deleter that plans the root first takes everything below it.
    void expectSelectionHonoured(const QStringList& failureNames,
                                 bool coveredByAncestor,
                                 const QStringList& removableTopFolders = {}) const;
    // Bytes that left the root: each item with its file identity once, or else every
    // regular file path (hard links count where they stand).
    qint64 goneBytes(bool eachIdentityOnce) const;

private:
    RandomTrial(quint64 seed, const QString& rootRelative, const QStringList& topFolders);

    QString newName(QChar kind) { return kind + QString::number(++m_counter); }
    const QString& any(const QStringList& list) { return list.at(between(0, int(list.size()) - 1)); }
    QString makeFile(const QString& folder);
    void populate();
    void populateFolder(const QString& folder, int depth);
    void pickSelection(const QStringList& extraHostile);
    QString outsideCopyOf(const QString& folder);
    void addPick(const QString& path, Role role);
    // Everything but the root; the root alone with the race renames undone.
    TreeState captureOutside() const { return captureTree(m_base, {m_root}); }
    TreeState captureRoot() const;
    QString describe() const;

    struct Race
    {
        QString folder;
        QString copy;
        bool fired = false;
    };

    std::mt19937_64 m_rng;
    TempTree m_tree;
    QString m_base;
    QString m_root;
    QString m_outside;
    QStringList m_topFolders;
    int m_counter = 0;

    QStringList m_rootItems; // every item made in the root, through real folders only
    QStringList m_rootFolders; // the real folders among them
    QStringList m_rootFiles; // regular files, for hard links
    QStringList m_outsideItems;
    QStringList m_outsideFiles;
    QList<QPair<QString, QString>> m_linksOut; // link in the root -> an item in its target folder

    QList<Pick> m_picks;
    QStringList m_swapped; // folders a race replaced by links
    QHash<QString, QString> m_asideToOriginal; // race renames, relative to the root
    QHash<QString, Race> m_races; // by the clean path of the picked item
    TreeState m_outsideBefore;
    TreeState m_rootBefore;
};

} // namespace quillbay::test
