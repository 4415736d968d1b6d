#include <array>

#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

namespace {

// Archive and manifest endings, the forms with ".incomplete" (a download in progress)
// before their short forms, so that "x.tar.gz.incomplete" loses the whole ending and
// not just ".incomplete". At most one row applies to a name.
constexpr std::array<QLatin1StringView, 20> kVersionSuffixes {
    QLatin1StringView(".bottle_manifest.json.incomplete"),
    QLatin1StringView(".bottle.tar.gz.incomplete"),
    QLatin1StringView(".tar.bz2.incomplete"),
    QLatin1StringView(".tar.gz.incomplete"),
    QLatin1StringView(".tar.xz.incomplete"),
    QLatin1StringView(".tar.zst.incomplete"),
    QLatin1StringView(".bottle_manifest.json"),
    QLatin1StringView(".bottle.tar.gz"),
    QLatin1StringView(".incomplete"),
    QLatin1StringView(".tar.bz2"),
    QLatin1StringView(".tar.gz"),
    QLatin1StringView(".tar.xz"),
    QLatin1StringView(".tar.zst"),
    QLatin1StringView(".pkg"),
    QLatin1StringView(".dmg"),
    QLatin1StringView(".zip"),
    QLatin1StringView(".json"),
    QLatin1StringView(".xz"),
    QLatin1StringView(".bz2"),
    QLatin1StringView(".gz"),
};

// Bottle tags: what follows the version in a bottle name ("1.24.5.arm64_sonoma",
// "2.0.all"). The first marker found wins; later ones are not looked at.
constexpr std::array<QLatin1StringView, 3> kBottleTagMarkers {
    QLatin1StringView(".arm64_"),
    QLatin1StringView(".x86_64_"),
    QLatin1StringView(".all"),
};

} // namespace

std::optional<std::pair<QString, QString>> HomebrewCacheScanner::parseCacheName(const QString& name, bool isCask)
{
    const QStringList parts = name.split(QLatin1StringView("--"));
    if (parts.size() < 2)
        return std::nullopt;
    // Whatever stands between the first and the last part (a resource name, say) is not
    // part of the key.
    QString package = parts.first();
    QString version = parts.last();
    if (package.isEmpty() || version.isEmpty())
        return std::nullopt;
    if (!isCask) {
        // The manifest of a bottle is stored as "<name>_bottle_manifest--<version>..." and
        // belongs to the same formula.
        package.remove(QLatin1StringView("_bottle_manifest"));
        if (package.isEmpty())
            return std::nullopt;
    }
    for (const QLatin1StringView suffix : kVersionSuffixes) {
        if (version.endsWith(suffix)) {
            version.chop(suffix.size());
            break;
        }
    }
    for (const QLatin1StringView marker : kBottleTagMarkers) {
        const qsizetype at = version.lastIndexOf(marker);
        if (at >= 0) {
            version.truncate(at);
            break;
        }
    }
    if (version.isEmpty())
        return std::nullopt;
    return std::pair {package, version};
}

} // namespace quillbay
