#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "xcode_cleanup/DeviceSupportReader.h"

namespace quillbay::fuzz {

namespace {

const char* const kOSLabels[] = {"iOS", "watchOS", "tvOS", "visionOS", "macOS", "Unknown"};

// Sorting compares builds, and the build ordering stops the program for a pair with equal
// (or absent) majors where only one has a minor. Folder names from one OS folder can
// produce such a pair, which the ordering leaves unanswered on purpose; the sort is only
// exercised on lists that stay clear of it.
bool sortable(const std::vector<XcodeFileProperties>& items)
{
    for (const XcodeFileProperties& x : items) {
        for (const XcodeFileProperties& y : items) {
            const AppleBuild a = x.as<DeviceSupportFile>()->build.value_or(AppleBuild());
            const AppleBuild b = y.as<DeviceSupportFile>()->build.value_or(AppleBuild());
            const bool majorsDecide
                = (a.major && b.major && *a.major != *b.major) || a.major.has_value() != b.major.has_value();
            if (!majorsDecide && a.minor.has_value() != b.minor.has_value())
                return false;
        }
    }
    return true;
}

} // namespace

void deviceSupportName(const std::uint8_t* data, std::size_t size)
{
    // The first byte picks the OS folder; then one folder name per line.
    if (size == 0)
        return;
    const QString osLabel = QLatin1String(kOSLabels[data[0] % std::size(kOSLabels)]);
    const QString folder = QStringLiteral("/nonexistent-device-support/");
    std::vector<XcodeFileProperties> items;
    for (QString name : linesOf(data + 1, size - 1)) {
        // A folder name holds neither a separator nor a NUL.
        name.remove(QLatin1Char('/'));
        name.remove(QChar(0));
        if (name.isEmpty())
            continue;
        auto item = readDeviceSupport(folder + name, osLabel);
        if (!item)
            continue;
        const DeviceSupportFile* file = item->as<DeviceSupportFile>();
        if (!file || item->paths != QStringList {folder + name} || item->label.isEmpty())
            __builtin_trap();
        items.push_back(std::move(*item));
    }
    if (!sortable(items))
        return;
    const std::size_t before = items.size();
    const auto sorted = sortedDeviceSupportFiles(std::move(items));
    if (sorted.size() > before)
        __builtin_trap();
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        // Newest version first.
        if (sorted[i - 1].as<DeviceSupportFile>()->version < sorted[i].as<DeviceSupportFile>()->version)
            __builtin_trap();
    }
}

} // namespace quillbay::fuzz
