#include "homebrew_installed/HomebrewInstalledPackage.h"

#include <algorithm>

#include "foundation/LocalizedText.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

bool isAlphanumeric(char32_t scalar)
{
    return isAlphanumericScalar(scalar);
}

bool isShellSafe(char32_t scalar)
{
    static constexpr QStringView punctuation = u"@%_+=:,./-";
    if (scalar < 0x80 && punctuation.contains(QChar(scalar)))
        return true;
    return isAlphanumeric(scalar);
}

QString kindOption(HomebrewCatalogKind kind)
{
    return kind == HomebrewCatalogKind::formula ? u"--formula"_s : u"--cask"_s;
}

} // namespace

QString HomebrewInstalledPackage::id() const
{
    return rawValue(kind) + u':' + identifier + u':' + installedVersion + u':' + installationURL;
}

QString HomebrewInstalledPackage::displayName() const
{
    return catalogSummary ? catalogSummary->displayName : identifier;
}

std::optional<bool> HomebrewInstalledPackage::isPossiblyOutdated() const
{
    if (!catalogSummary || catalogSummary->version.isEmpty())
        return std::nullopt;
    return catalogSummary->version != installedVersion;
}

QString HomebrewInstalledPackage::upgradeCommand() const
{
    return u"brew upgrade "_s + kindOption(kind) + u' ' + shellQuoted(identifier);
}

QString HomebrewInstalledPackage::uninstallCommand() const
{
    return u"brew uninstall "_s + kindOption(kind) + u' ' + shellQuoted(identifier);
}

bool HomebrewInstalledPackage::matches(const QString& query) const
{
    if (query.isEmpty())
        return true;
    const QString needle = foldedSearchKey(query);
    const auto hit = [&needle](const QString& text) { return foldedContains(foldedSearchKey(text), needle); };
    if (hit(identifier) || hit(installedVersion) || hit(displayName()))
        return true;
    if (!catalogSummary)
        return false;
    if (!catalogSummary->summary.isEmpty() && hit(catalogSummary->summary))
        return true;
    for (const QString& alias : catalogSummary->aliases) {
        if (hit(alias))
            return true;
    }
    return false;
}

QString shellQuoted(const QString& text)
{
    // Unpaired surrogates come out as U+FFFD, which is not safe, so such text gets quoted.
    const QList<uint> scalars = text.toUcs4();
    const bool safe = !scalars.isEmpty()
        && std::all_of(scalars.cbegin(), scalars.cend(), [](uint scalar) { return isShellSafe(char32_t(scalar)); });
    if (safe)
        return text;
    QString quoted = text;
    quoted.replace(u'\'', u"'\"'\"'"_s);
    return u'\'' + quoted + u'\'';
}

} // namespace quillbay
