#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
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

    // `rootRelative` is where the authorized root lies inside the temporary folder;
    // `topFolders` are made at the root's top level besides the random ones.
    RandomTrial(quint64 seed, const QString& rootRelative, const QStringList& topFolders = {});

    std::mt19937_64& rng() { return m_rng; }
    bool chance(double probability);
    int between(int low, int high); // inclusive

    QString base() const { return m_base; }
    QString root() const { return m_root; }
    QString outside() const { return m_outside; }

    // Fills the outside folder and the root.
    void populate();
    // Random paths to delete; `extraHostile` are more paths that must be refused.
    void pickSelection(const QStringList& extraHostile = {});
    const QList<Pick>& picks() const { return m_picks; }

    // Between scan and deletion: a folder on the way to a picked item becomes a link to a
    // copy of it outside the root (the original moves aside within the root).
    void swapBeforeDeletion();
    // Chooses picks whose parent folder will be swapped the same way at the moment the
    // deleter reaches them; prepares the outside copies now so the outside snapshot holds
    // them.
    void prepareRaces();
    // Called from the deleter's test hook for every path it is about to act on.
    void raceHook(const QString& path);

    // Snapshots: everything but the root, and the root alone with the race renames undone.
    TreeState captureOutside() const { return captureTree(m_base, {m_root}); }
    TreeState captureRoot() const;

    // After the deletion: the checks every deleter shares. `failureNames` are the item
    // names of the reported failures; `removableTopFolders` may vanish when empty.
    void expectOutsideUnchanged(const TreeState& before) const;
    void expectSelectionHonoured(const TreeState& rootBefore,
                                 const QStringList& failureNames,
                                 bool coveredByAncestor,
                                 const QStringList& removableTopFolders = {}) const;

    // Bytes by the two counting rules, from what left the root between the captures:
    // allocated bytes of every regular file path gone (hard links count where they stand),
    // and allocated bytes of every item gone, each file identity once.
    static qint64 goneFileBytes(const TreeState& before, const TreeState& after);
    static qint64 goneIdentityBytes(const TreeState& before, const TreeState& after);

    QString describe() const;

private:
    struct Race
    {
        QString folder;
        QString copy;
        bool fired = false;
    };

    QString newName(QChar kind);
    QString makeFile(const QString& folder);
    void populateFolder(const QString& folder, int depth);
    QString outsideCopyOf(const QString& folder);
    void swapFolder(const QString& folder, const QString& copy, const QString& asideName);
    bool isUnderSwapped(const QString& path) const;
    Pick makePick(const QString& path, Role role) const;

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
    QStringList m_swapped; // folders replaced by links, before or during the deletion
    QHash<QString, QString> m_asideToOriginal; // race renames, relative to the root
    QHash<QString, Race> m_races; // by the clean path of the picked item
};

} // namespace quillbay::test
