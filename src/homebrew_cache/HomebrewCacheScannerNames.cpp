#include <array>
#include <string_view>
#include <type_traits>

#include "homebrew_cache/HomebrewCacheNameParts.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

namespace {

// Archive and manifest endings, the forms with ".incomplete" (a download in progress)
// before their short forms, so that "x.tar.gz.incomplete" loses the whole ending and
// not just ".incomplete". At most one row applies to a name.
constexpr std::array<std::string_view, 20> kVersionSuffixes {
    ".bottle_manifest.json.incomplete",
    ".bottle.tar.gz.incomplete",
    ".tar.bz2.incomplete",
    ".tar.gz.incomplete",
    ".tar.xz.incomplete",
    ".tar.zst.incomplete",
    ".bottle_manifest.json",
    ".bottle.tar.gz",
    ".incomplete",
    ".tar.bz2",
    ".tar.gz",
    ".tar.xz",
    ".tar.zst",
    ".pkg",
    ".dmg",
    ".zip",
    ".json",
    ".xz",
    ".bz2",
    ".gz",
};

// Bottle tags: what follows the version in a bottle name ("1.24.5.arm64_sonoma",
// "2.0.all"). The first marker found wins; later ones are not looked at.
constexpr std::array<std::string_view, 3> kBottleTagMarkers {".arm64_", ".x86_64_", ".all"};

constexpr std::string_view kManifestMark = "_bottle_manifest";

template <typename Char> bool equalsAscii(std::basic_string_view<Char> text, size_t at, std::string_view ascii)
{
    if constexpr (std::is_same_v<Char, char>)
        return text.substr(at, ascii.size()) == ascii;
    for (size_t i = 0; i < ascii.size(); ++i) {
        if (text[at + i] != Char(static_cast<unsigned char>(ascii[i])))
            return false;
    }
    return true;
}

template <typename Char> size_t findAscii(std::basic_string_view<Char> text, std::string_view ascii, size_t from)
{
    if constexpr (std::is_same_v<Char, char>)
        return text.find(ascii, from);
    for (size_t at = from; at + ascii.size() <= text.size(); ++at) {
        if (equalsAscii(text, at, ascii))
            return at;
    }
    return std::basic_string_view<Char>::npos;
}

} // namespace

template <typename Char>
std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<Char> text, bool isCask)
{
    // Split at every "--" from the left, as a list split would, without making the parts:
    // only the first and the last are needed. Whatever stands between them (a resource
    // name, say) is not part of the key. "a---b" thus ends in "-b".
    const auto separatorFrom = [&text](size_t from) -> size_t {
        for (size_t dash = text.find(Char('-'), from); dash != text.npos && dash + 1 < text.size();
             dash = text.find(Char('-'), dash + 1)) {
            if (text[dash + 1] == Char('-'))
                return dash;
        }
        return text.npos;
    };
    constexpr size_t separatorSize = 2;
    const size_t first = separatorFrom(0);
    if (first == text.npos)
        return std::nullopt;
    size_t lastStart = first + separatorSize;
    for (size_t next = separatorFrom(lastStart); next != text.npos; next = separatorFrom(lastStart))
        lastStart = next + separatorSize;
    HomebrewCacheNameParts parts;
    parts.packageSize = first;
    parts.versionStart = lastStart;
    size_t versionEnd = text.size();
    if (first == 0 || versionEnd == lastStart)
        return std::nullopt;
    if (!isCask) {
        // The manifest of a bottle is stored as "<name>_bottle_manifest--<version>..." and
        // belongs to the same formula.
        const std::basic_string_view<Char> package = text.substr(0, first);
        size_t kept = 0;
        for (size_t at = 0;;) {
            const size_t found = findAscii(package, kManifestMark, at);
            if (found == package.npos) {
                kept += package.size() - at;
                break;
            }
            parts.hasManifestMark = true;
            kept += found - at;
            at = found + kManifestMark.size();
        }
        if (kept == 0)
            return std::nullopt;
    }
    for (const std::string_view suffix : kVersionSuffixes) {
        // The last character rules out most rows at once.
        if (text[versionEnd - 1] != Char(suffix.back()))
            continue;
        if (versionEnd - lastStart >= suffix.size() && equalsAscii(text, versionEnd - suffix.size(), suffix)) {
            versionEnd -= suffix.size();
            break;
        }
    }
    const std::basic_string_view<Char> version = text.substr(lastStart, versionEnd - lastStart);
    for (const std::string_view marker : kBottleTagMarkers) {
        size_t at = version.npos;
        for (size_t from = findAscii(version, marker, 0); from != version.npos;
             from = findAscii(version, marker, from + 1))
            at = from;
        if (at != version.npos) {
            versionEnd = lastStart + at;
            break;
        }
    }
    if (versionEnd == lastStart)
        return std::nullopt;
    parts.versionSize = versionEnd - lastStart;
    return parts;
}

template std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<char>, bool);
template std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<char16_t>, bool);

std::optional<std::pair<QString, QString>> HomebrewCacheScanner::parseCacheName(const QString& name, bool isCask)
{
    const QStringView text(name);
    const auto parts = parseCacheNameParts(std::u16string_view(text.utf16(), size_t(text.size())), isCask);
    if (!parts)
        return std::nullopt;
    QString package = text.left(qsizetype(parts->packageSize)).toString();
    if (parts->hasManifestMark)
        package.remove(QLatin1StringView(kManifestMark.data(), qsizetype(kManifestMark.size())));
    return std::pair {package, text.mid(qsizetype(parts->versionStart), qsizetype(parts->versionSize)).toString()};
}

} // namespace quillbay
