#pragma once

#include <QList>
#include <QString>
#include <QUuid>

namespace quillbay {

enum class Tool { xcodeReleases, assetsMaker, xcodeCleanup, homebrewCatalog, homebrewInstalled, homebrewCleanup };

// One row of the sidebar. The six items are made once per process with fresh ids;
// selection compares ids, so the two "Cleanup" rows stay distinct.
struct SidebarItem
{
    QUuid id;
    QString title;
    QString systemImage;
    Tool tool;
};

struct SidebarSection
{
    QString heading;
    QList<const SidebarItem*> items;
};

const QList<SidebarSection>& sidebarSections();
const SidebarItem& sidebarItem(Tool tool);

} // namespace quillbay
