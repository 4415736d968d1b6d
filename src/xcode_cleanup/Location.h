#pragma once

#include <QString>
#include <array>

namespace quillbay {

// The six places a scan visits; the order of the cases is the order of the screen and of
// every scan.
enum class Location : int {
    deviceSupport = 0,
    archives = 1,
    derivedData = 2,
    documentationCache = 3,
    logs = 4,
    userDataPreview = 5,
};

inline constexpr std::array<Location, 6> allLocations
    = {Location::deviceSupport,      Location::archives, Location::derivedData,
       Location::documentationCache, Location::logs,     Location::userDataPreview};

QString locationLabel(Location location);
QString locationTooltip(Location location);

} // namespace quillbay
