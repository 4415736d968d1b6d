#pragma once

#include <QString>
#include <optional>

namespace quillbay {

// Which of the two catalogs a package belongs to. The raw value is the word used in
// request paths, cache names and snapshot documents, so it never changes.
enum class HomebrewCatalogKind { cask, formula };

inline QString rawValue(HomebrewCatalogKind kind)
{
    return kind == HomebrewCatalogKind::cask ? QStringLiteral("cask") : QStringLiteral("formula");
}

// What the kind picker shows.
inline QString kindLabel(HomebrewCatalogKind kind)
{
    return kind == HomebrewCatalogKind::cask ? QStringLiteral("Cask") : QStringLiteral("Formula");
}

inline std::optional<HomebrewCatalogKind> catalogKindFromRawValue(QStringView text)
{
    if (text == u"cask")
        return HomebrewCatalogKind::cask;
    if (text == u"formula")
        return HomebrewCatalogKind::formula;
    return std::nullopt;
}

} // namespace quillbay
