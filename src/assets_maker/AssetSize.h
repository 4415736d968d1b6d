#pragma once

#include <QSize>
#include <QString>
#include <optional>

#include "assets_maker/AssetItem.h"

namespace quillbay {

// A size in points as an asset entry spells it: "<width>x<height>", digits and dots only,
// a lower-case x, no blanks.
struct AssetSize
{
    float width = 0;
    float height = 0;
    QString text;
};

std::optional<AssetSize> parseAssetSize(const QString& text);

// The pixels of one entry: each side times the scale's multiplier (an absent scale is 1x)
// in 32-bit floats, the fraction dropped, so "83.5x83.5" at 2x is 167 x 167. Throws
// AssetMakerError (corrupt data) for a size that doesn't parse, a scale outside 1x-3x,
// and a product that is not a finite count of pixels.
QSize assetPixelSize(const AssetItem& item);

} // namespace quillbay
