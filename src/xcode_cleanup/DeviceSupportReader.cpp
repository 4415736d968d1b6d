#include "xcode_cleanup/DeviceSupportReader.h"

#include <QFileInfo>
#include <QLocale>
#include <algorithm>

#include "foundation/Log.h"
#include "xcode_cleanup/DeviceNames.h"
#include "xcode_cleanup/DirectoryListing.h"

namespace quillbay {

std::optional<XcodeFileProperties> readDeviceSupport(const QString& path, const QString& osLabel)
{
    const QString name = QFileInfo(path).fileName();
    const QStringList pieces = splitPieces(name, QLatin1Char(' '), 4);
    if (pieces.isEmpty())
        return std::nullopt;

    DeviceSupportFile file;
    file.date = creationDate(path);
    std::optional<QString> buildText;
    if (const auto version = Version::parse(pieces.at(0))) {
        file.version = *version;
        if (pieces.size() > 1)
            buildText = pieces.at(1);
        if (pieces.size() > 2)
            file.architecture = pieces.at(2);
    } else if (const auto deviceVersion = pieces.size() > 1 ? Version::parse(pieces.at(1)) : std::nullopt) {
        file.device = pieces.at(0);
        file.version = *deviceVersion;
        if (pieces.size() > 2)
            buildText = pieces.at(2);
        if (pieces.size() > 3)
            file.architecture = pieces.at(3);
    } else {
        qCCritical(logApp).noquote()
            << QStringLiteral("XcodeFileManager: 无设备支持版本: %1, 跳过").arg(privateText(name));
        return std::nullopt;
    }
    if (buildText)
        file.build = AppleBuild(*buildText);
    file.osType = osTypeFromText(osLabel);
    file.location = path;

    XcodeFileProperties item;
    // The blank before the build stays when there is none: "iOS 17.1 ".
    item.label = osTypeName(file.osType) + QLatin1Char(' ') + file.version.description() + QLatin1Char(' ')
        + (file.build ? file.build->textual : QString());
    if (file.device)
        item.label += QStringLiteral(" (") + deviceName(*file.device) + QLatin1Char(')');
    item.tooltip = item.label + QLatin1Char(' ') + QLocale().toString(file.date.date(), QStringLiteral("MMM d, yyyy"));
    item.paths = {path};
    item.record = std::move(file);
    return item;
}

std::vector<XcodeFileProperties> sortedDeviceSupportFiles(std::vector<XcodeFileProperties> files)
{
    // A missing build compares as one with all parts absent.
    const auto buildOf = [](const DeviceSupportFile& f) { return f.build.value_or(AppleBuild()); };
    std::stable_sort(files.begin(), files.end(), [&](const XcodeFileProperties& a, const XcodeFileProperties& b) {
        const DeviceSupportFile& x = *a.as<DeviceSupportFile>();
        const DeviceSupportFile& y = *b.as<DeviceSupportFile>();
        if (!(x.version == y.version))
            return y.version < x.version;
        return buildOf(y) < buildOf(x);
    });

    std::vector<const DeviceSupportFile*> plain;
    for (const XcodeFileProperties& item : files) {
        const DeviceSupportFile* f = item.as<DeviceSupportFile>();
        if (!f->architecture)
            plain.push_back(f);
    }
    // Decide every duplicate before moving anything: `plain` points into `files`.
    std::vector<bool> duplicate(files.size(), false);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const DeviceSupportFile* f = files[i].as<DeviceSupportFile>();
        duplicate[i] = f->architecture && std::any_of(plain.begin(), plain.end(), [&](const DeviceSupportFile* p) {
                           return p->version == f->version && buildOf(*p) == buildOf(*f) && p->device == f->device;
                       });
    }
    std::vector<XcodeFileProperties> kept;
    kept.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!duplicate[i])
            kept.push_back(std::move(files[i]));
    }
    return kept;
}

} // namespace quillbay
