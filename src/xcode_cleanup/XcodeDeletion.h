#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "xcode_cleanup/XcodeFileProperties.h"

namespace quillbay {

// A folder inside which deletion is allowed: as spelled (standardized) and with its links
// resolved. The guard compares a target against both, separately.
struct XcodeDeletionRoot
{
    QString lexicalURL;
    QString resolvedURL;

    static XcodeDeletionRoot fromPath(const QString& path);
    bool operator==(const XcodeDeletionRoot&) const = default;
};

struct XcodeDeletionResult
{
    struct Failure
    {
        QString itemName;
        QString message;
        bool operator==(const Failure&) const = default;
    };

    qint64 deletedItemCount = 0;
    qint64 failedItemCount = 0;
    qint64 reclaimedSize = 0;
    QList<Failure> failures;
};

// One filesystem item that a selected row stands for.
struct XcodeDeletionTarget
{
    QString locationName;
    QString itemName;
    QString url;
    bool operator==(const XcodeDeletionTarget&) const = default;
};

// The guard around every removal of the cleanup tool. Runs on the file manager's thread.
class XcodeDeletion
{
public:
    // The built-in folders under `developerFolder`/Xcode that may be cleaned, minus any
    // whose resolved path leaves the resolved Xcode folder (a link pointing elsewhere).
    static QList<XcodeDeletionRoot> builtInRoots(const QString& developerFolder);
    // Built-in roots, then the custom archive and derived data folders, without
    // duplicates. Custom folders were picked by the user, so they are not confined.
    static QList<XcodeDeletionRoot> authorizedRoots(const QList<XcodeDeletionRoot>& builtIn,
                                                    const QStringList& customArchivesFolders,
                                                    const QStringList& customDerivedDataFolders);

    // The target lies strictly inside the root as spelled, and its parent, with every
    // link resolved, lies inside the root's resolved path. The target itself is not
    // resolved, so a link is judged (and deleted) as a link.
    static bool accepted(const QString& target, const XcodeDeletionRoot& root);

    // The filesystem items the selection of `rows` stands for, each path once. A selected
    // node with paths covers its subtree; a node without paths (a location, an OS row, an
    // archive group) is never a target itself, however it is checked.
    static QList<XcodeDeletionTarget> collectTargets(const std::vector<XcodeFileProperties>& rows);

    // Bytes a target frees: 0 for a link, else the folder measure, else the item's own.
    using Measure = std::function<qint64(const QString& path)>;

    XcodeDeletion(QList<XcodeDeletionRoot> roots, Measure measure);

    // Checks, measures, checks again and removes each target in order; never stops at a
    // failure. A target that is already gone counts neither as deleted nor as failed.
    XcodeDeletionResult run(const QList<XcodeDeletionTarget>& targets) const;

    // Tests only: runs between the measure and the second check of every target, where a
    // parent folder could be swapped for a link.
    void setBetweenChecksHook(std::function<void(const XcodeDeletionTarget&)> hook)
    {
        m_betweenChecks = std::move(hook);
    }

private:
    bool acceptedByAnyRoot(const QString& target) const;

    QList<XcodeDeletionRoot> m_roots;
    Measure m_measure;
    std::function<void(const XcodeDeletionTarget&)> m_betweenChecks;
};

} // namespace quillbay
