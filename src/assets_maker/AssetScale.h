#pragma once

#include <QString>
#include <array>
#include <optional>

namespace quillbay {

// The scale of an icon or image file. The declared order is the multiplier order.
enum class AssetScale {
    x1,
    x2,
    x3,
};

inline constexpr std::array<AssetScale, 3> allAssetScales {AssetScale::x1, AssetScale::x2, AssetScale::x3};

// "1x", "2x" or "3x".
QString assetScaleText(AssetScale scale);
// Exactly one of the three texts; anything else is no scale.
std::optional<AssetScale> assetScaleFromText(const QString& text);
// The case's position plus one.
int assetScaleMultiplier(AssetScale scale);

} // namespace quillbay
