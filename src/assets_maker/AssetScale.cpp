#include "assets_maker/AssetScale.h"

namespace quillbay {

QString assetScaleText(AssetScale scale)
{
    switch (scale) {
    case AssetScale::x1:
        return QStringLiteral("1x");
    case AssetScale::x2:
        return QStringLiteral("2x");
    case AssetScale::x3:
        return QStringLiteral("3x");
    }
    Q_UNREACHABLE();
}

std::optional<AssetScale> assetScaleFromText(const QString& text)
{
    for (const AssetScale scale : allAssetScales) {
        if (text == assetScaleText(scale))
            return scale;
    }
    return std::nullopt;
}

int assetScaleMultiplier(AssetScale scale)
{
    return static_cast<int>(scale) + 1;
}

} // namespace quillbay
