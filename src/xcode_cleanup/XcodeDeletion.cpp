#include "xcode_cleanup/XcodeDeletion.h"

#include <QFileInfo>
#include <QSet>

#include "foundation/Log.h"
#include "foundation/PathContainment.h"
#include "xcode_cleanup/FileSystemRemoval.h"

namespace quillbay {

namespace {

const char* const kBuiltInFolders[] = {
    "Archives",          "DerivedData",           "DocumentationCache", "iOS Device Logs",        "UserData/Previews",
    "iOS DeviceSupport", "watchOS DeviceSupport", "tvOS DeviceSupport", "visionOS DeviceSupport", "macOS DeviceSupport",
};

void appendUnique(QList<XcodeDeletionRoot>& roots, const QString& path)
{
    XcodeDeletionRoot root = XcodeDeletionRoot::fromPath(path);
    for (const XcodeDeletionRoot& existing : roots) {
        if (existing.lexicalURL == root.lexicalURL)
            return;
    }
    roots.append(std::move(root));
}

QString parentPath(const QString& standardized)
{
    const qsizetype slash = standardized.lastIndexOf(QLatin1Char('/'));
    if (slash <= 0)
        return QStringLiteral("/");
    return standardized.left(slash);
}

QString noPermissionMessage(const QString& path)
{
    const QFileInfo info(path);
    return QStringLiteral("You don’t have permission to save the file “%1” in the folder “%2”.")
        .arg(info.fileName(), QFileInfo(info.path()).fileName());
}

void addChecked(qint64& total, qint64 amount)
{
    if (__builtin_add_overflow(total, amount, &total))
        qFatal("Xcode cleanup deletion counter overflowed");
}

} // namespace

XcodeDeletionRoot XcodeDeletionRoot::fromPath(const QString& path)
{
    const QString lexical = standardizedPath(path);
    return {lexical, resolvedPath(lexical)};
}

QList<XcodeDeletionRoot> XcodeDeletion::builtInRoots(const QString& developerFolder)
{
    const QString xcode = standardizedPath(developerFolder + QStringLiteral("/Xcode"));
    QList<XcodeDeletionRoot> candidates;
    for (const char* folder : kBuiltInFolders)
        appendUnique(candidates, xcode + QLatin1Char('/') + QLatin1String(folder));
    const QString reference = resolvedPath(xcode);
    QList<XcodeDeletionRoot> roots;
    for (const XcodeDeletionRoot& candidate : candidates) {
        if (isPathInside(candidate.resolvedURL, reference))
            roots.append(candidate);
    }
    return roots;
}

QList<XcodeDeletionRoot> XcodeDeletion::authorizedRoots(const QList<XcodeDeletionRoot>& builtIn,
                                                        const QStringList& customArchivesFolders,
                                                        const QStringList& customDerivedDataFolders)
{
    QList<XcodeDeletionRoot> roots;
    for (const XcodeDeletionRoot& root : builtIn)
        appendUnique(roots, root.lexicalURL);
    for (const QString& folder : customArchivesFolders)
        appendUnique(roots, folder);
    for (const QString& folder : customDerivedDataFolders)
        appendUnique(roots, folder);
    return roots;
}

bool XcodeDeletion::accepted(const QString& target, const XcodeDeletionRoot& root)
{
    const QString t = standardizedPath(target);
    if (t.isEmpty() || t == root.lexicalURL)
        return false;
    if (!isPathInside(standardizedPath(t), standardizedPath(root.lexicalURL)))
        return false;
    const QString parent = resolvedPath(parentPath(t));
    return isPathInside(parent, root.resolvedURL);
}

QList<XcodeDeletionTarget> XcodeDeletion::collectTargets(const std::vector<XcodeFileProperties>& rows)
{
    QList<XcodeDeletionTarget> targets;
    QSet<QString> seen;
    for (const XcodeFileProperties& row : rows) {
        if (!row.hasSelection())
            continue;
        std::vector<const XcodeFileProperties*> stack {&row};
        while (!stack.empty()) {
            const XcodeFileProperties* node = stack.back();
            stack.pop_back();
            if (node->isSelected && !node->paths.isEmpty()) {
                for (const QString& path : node->paths) {
                    const QString key = standardizedPath(path);
                    if (seen.contains(key))
                        continue;
                    seen.insert(key);
                    targets.append({row.label, node->label, path});
                }
            } else if (node->hasSelection() && node->children) {
                for (const XcodeFileProperties& child : *node->children)
                    stack.push_back(&child);
            }
        }
    }
    return targets;
}

XcodeDeletion::XcodeDeletion(QList<XcodeDeletionRoot> roots, Measure measure)
    : m_roots(std::move(roots))
    , m_measure(std::move(measure))
{
}

bool XcodeDeletion::acceptedByAnyRoot(const QString& target) const
{
    for (const XcodeDeletionRoot& root : m_roots) {
        if (accepted(target, root))
            return true;
    }
    return false;
}

XcodeDeletionResult XcodeDeletion::run(const QList<XcodeDeletionTarget>& targets) const
{
    XcodeDeletionResult result;
    for (const XcodeDeletionTarget& target : targets) {
        if (!acceptedByAnyRoot(target.url)) {
            result.failures.append({target.itemName, noPermissionMessage(target.url)});
            addChecked(result.failedItemCount, 1);
            qCCritical(logApp) << "Rejected Xcode cleanup item outside an authorized root.";
            continue;
        }
        // Measure and remove what the checks judged: the standardized path. The spelling as
        // given may end in "/" or "/.", which makes the system follow a link the checks
        // treated as the item itself.
        const QString path = standardizedPath(target.url);
        const qint64 size = QFileInfo(path).isSymLink() ? 0 : m_measure(path);
        if (m_betweenChecks)
            m_betweenChecks(target);
        if (!acceptedByAnyRoot(target.url)) {
            result.failures.append({target.itemName, noPermissionMessage(target.url)});
            addChecked(result.failedItemCount, 1);
            qCCritical(logApp) << "Rejected Xcode cleanup item after its parent changed.";
            continue;
        }
        const FileSystemRemoval::Result removal = FileSystemRemoval::removeItem(path);
        switch (removal.outcome) {
        case FileSystemRemoval::Outcome::removed:
            addChecked(result.deletedItemCount, 1);
            addChecked(result.reclaimedSize, size);
            qCDebug(logApp).noquote() << QStringLiteral("Deleted Xcode cleanup item in %1.").arg(target.locationName);
            break;
        case FileSystemRemoval::Outcome::absent:
            qCDebug(logApp) << "Xcode cleanup item was already absent.";
            break;
        case FileSystemRemoval::Outcome::failed:
            result.failures.append({target.itemName, removal.message});
            addChecked(result.failedItemCount, 1);
            qCCritical(logApp).noquote() << QStringLiteral("Failed to delete Xcode cleanup item in %1: %2")
                                                .arg(target.locationName, privateText(removal.message));
            break;
        }
    }
    return result;
}

} // namespace quillbay
