#include "core/views/SidebarItem.h"

#include <array>

namespace quillbay {

namespace {

const std::array<SidebarItem, 6>& items()
{
    static const std::array<SidebarItem, 6> all {{
        {QUuid::createUuid(), QStringLiteral("Releases"), QStringLiteral("clock.arrow.circlepath"),
         Tool::xcodeReleases},
        {QUuid::createUuid(), QStringLiteral("Assets Maker"), QStringLiteral("app.badge"), Tool::assetsMaker},
        {QUuid::createUuid(), QStringLiteral("Cleanup"), QStringLiteral("externaldrive.badge.minus"),
         Tool::xcodeCleanup},
        {QUuid::createUuid(), QStringLiteral("Catalog"), QStringLiteral("books.vertical"), Tool::homebrewCatalog},
        {QUuid::createUuid(), QStringLiteral("Installed"), QStringLiteral("shippingbox.fill"), Tool::homebrewInstalled},
        {QUuid::createUuid(), QStringLiteral("Cleanup"), QStringLiteral("externaldrive.badge.minus"),
         Tool::homebrewCleanup},
    }};
    return all;
}

} // namespace

const QList<SidebarSection>& sidebarSections()
{
    static const QList<SidebarSection> sections {
        {QStringLiteral("Xcode"), {&items()[0], &items()[1], &items()[2]}},
        {QStringLiteral("Homebrew"), {&items()[3], &items()[4], &items()[5]}},
    };
    return sections;
}

const SidebarItem& sidebarItem(Tool tool)
{
    return items()[static_cast<std::size_t>(tool)];
}

} // namespace quillbay
