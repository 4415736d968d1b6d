#include "assets_maker/AssetCatalogLayout.h"

#include <QtGlobal>

// Resources of a static library are registered by hand, once, outside any namespace.
static void registerAssetTemplates()
{
    Q_INIT_RESOURCE(AssetContents);
}

namespace quillbay::AssetCatalogLayout {

QString bundledTemplateFolder()
{
    static const bool registered = (registerAssetTemplates(), true);
    Q_UNUSED(registered);
    return QStringLiteral(":/AssetContents");
}

} // namespace quillbay::AssetCatalogLayout
