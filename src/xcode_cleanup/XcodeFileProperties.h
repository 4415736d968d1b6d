#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <optional>
#include <span>
#include <stop_token>
#include <variant>
#include <vector>

#include "foundation/Version.h"
#include "xcode_cleanup/Icon.h"
#include "xcode_cleanup/OSType.h"
#include "xcode_cleanup/SubmissionStatus.h"

namespace quillbay {

// The per-kind fields of a cleanup node. Paths are absolute file-system paths.

// Location rows, OS rows and archive groups: nothing beyond the common fields.
struct XcodeFile
{
};

// The SwiftUI preview row; its paths are the entries of the previews folder.
struct UserDataPreviewFile
{
};

struct DeviceSupportFile
{
    std::optional<QString> device;
    OSType osType = OSType::other;
    Version version;
    std::optional<AppleBuild> build;
    QDateTime date;
    std::optional<QString> architecture;
    QString location;
};

struct ArchiveFile
{
    QString projectName;
    QString bundleName;
    QString versionString;
    std::optional<Version> version;
    QString build;
    QDateTime date;
    SubmissionStatus submissionStatus = SubmissionStatus::undefined;
    QString location;
};

struct DerivedDataFile
{
    QString projectName;
    QString pathUrl;
    QString location;
};

struct DocumentationCacheFile
{
    Version version;
};

struct LogsFile
{
    Version version;
};

using XcodeFileRecord = std::variant<XcodeFile,
                                     UserDataPreviewFile,
                                     DeviceSupportFile,
                                     ArchiveFile,
                                     DerivedDataFile,
                                     DocumentationCacheFile,
                                     LogsFile>;

// One node of the cleanup tree: a location row, a group row or a leaf. The tree is a
// plain value: copying a node copies its subtree, and edits go through the path from the
// root. A node with children has no paths of its own, so a parent's size contains its
// children's and nothing is counted twice.
class XcodeFileProperties
{
public:
    QUuid id = QUuid::createUuid();
    QString label;
    QString info;
    QString tooltip;
    std::optional<Icon> icon;
    QStringList paths;
    // Absent: not filled yet, or a leaf.
    std::optional<std::vector<XcodeFileProperties>> children;
    Size size;
    bool isSelected = false;
    XcodeFileRecord record;

    template <typename Record> const Record* as() const { return std::get_if<Record>(&record); }
    template <typename Record> bool is() const { return std::holds_alternative<Record>(record); }

    // Bytes a clean would reclaim from this subtree. Stops the program on overflow.
    qint64 selectedSize() const;
    bool hasSelection() const;
    // The check state of the node with this id in this subtree; absent when not here.
    std::optional<bool> selection(const QUuid& target) const;
    // Sets the node with this id and its whole subtree, then recomputes the check of
    // every ancestor on the way back (checked exactly when all its children are).
    bool setSelected(const QUuid& target, bool value);

    // The stored size when known, otherwise calculateSize().
    Size resolvedSize(std::stop_token stop = {});
    // Measures children first (they keep their sizes), then the node's own paths; a path
    // that cannot be measured counts 0. Never leaves the size unknown.
    Size calculateSize(std::stop_token stop = {});
};

// calculateSize() for several subtrees at once, every folder measured in one shared walk.
// With `keepKnownSizes`, a node whose size is already known keeps it and is not walked.
void calculateSizes(std::span<XcodeFileProperties> nodes, std::stop_token stop = {}, bool keepKnownSizes = false);

} // namespace quillbay
