#include "xcode_releases/InstalledXcodeVersion.h"

#include <QFile>
#include <QFileInfo>
#include <cstdlib>

#include <plist/plist.h>

#include "platform/Workspace.h"

namespace quillbay::Tools {

namespace {

constexpr qint64 kInfoPlistLimit = 4 * 1024 * 1024;

} // namespace

std::optional<QString> xcodeVersionOfBundle(const QString& bundlePath)
{
    if (!QFileInfo(bundlePath).isDir())
        return std::nullopt;
    QFile file(bundlePath + QStringLiteral("/Contents/Info.plist"));
    if (!file.open(QIODevice::ReadOnly) || file.size() > kInfoPlistLimit)
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    plist_t root = nullptr;
    plist_from_memory(bytes.constData(), static_cast<uint32_t>(bytes.size()), &root);
    if (!root)
        return std::nullopt;
    std::optional<QString> version;
    if (plist_get_node_type(root) == PLIST_DICT) {
        plist_t node = plist_dict_get_item(root, "CFBundleShortVersionString");
        if (node && plist_get_node_type(node) == PLIST_STRING) {
            char* text = nullptr;
            plist_get_string_val(node, &text);
            if (text) {
                version = QStringLiteral("Xcode ") + QString::fromUtf8(text);
                std::free(text);
            }
        }
    }
    plist_free(root);
    return version;
}

std::optional<QString> installedXcodeVersion(Workspace& workspace)
{
    const std::optional<QString> path = workspace.applicationPath(QStringLiteral("com.apple.dt.Xcode"));
    if (!path)
        return std::nullopt;
    return xcodeVersionOfBundle(*path);
}

} // namespace quillbay::Tools
