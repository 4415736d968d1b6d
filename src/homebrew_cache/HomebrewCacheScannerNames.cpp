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
// UTF-16 needles: a backwards search for a Latin-1 one converts it on every call.
constexpr std::array<QStringView, 3> kBottleTagMarkers {
    QStringView(u".arm64_"),
    QStringView(u".x86_64_"),
    QStringView(u".all"),
};

} // namespace

std::optional<std::pair<QString, QString>> HomebrewCacheScanner::parseCacheName(const QString& name, bool isCask)
{
    // Split at every "--" from the left, as a list split would, without making the parts:
    // only the first and the last are needed. Whatever stands between them (a resource
    // name, say) is not part of the key. "a---b" thus ends in "-b".
    const QStringView text(name);
    // Dashes are rare in names, so look for one (a vectorized search) and then its pair.
    const auto separatorFrom = [&text](qsizetype from) -> qsizetype {
        for (qsizetype dash = text.indexOf(u'-', from); dash >= 0 && dash + 1 < text.size();
             dash = text.indexOf(u'-', dash + 1)) {
            if (text[dash + 1] == u'-')
                return dash;
        }
        return -1;
    };
    constexpr qsizetype separatorSize = 2;
    const qsizetype first = separatorFrom(0);
    if (first < 0)
        return std::nullopt;
    qsizetype lastStart = first + separatorSize;
    for (qsizetype next = separatorFrom(lastStart); next >= 0; next = separatorFrom(lastStart))
        lastStart = next + separatorSize;
    const QStringView packageText = text.left(first);
    QStringView version = text.mid(lastStart);
    if (packageText.isEmpty() || version.isEmpty())
        return std::nullopt;
    QString package = packageText.toString();
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
    for (const QStringView marker : kBottleTagMarkers) {
        const qsizetype at = version.lastIndexOf(marker);
        if (at >= 0) {
            version.truncate(at);
            break;
        }
    }
    if (version.isEmpty())
        return std::nullopt;
    return std::pair {package, version.toString()};
}

} // namespace quillbay
