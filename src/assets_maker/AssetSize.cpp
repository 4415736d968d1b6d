#include "assets_maker/AssetSize.h"

#include <QRegularExpression>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetScale.h"

namespace quillbay {

namespace {

// The whole group must read as one number: "1.2.3" and "." are none.
std::optional<float> readFloat(const QString& group)
{
    const QByteArray latin = group.toLatin1();
    if (latin.isEmpty())
        return std::nullopt;
    char* end = nullptr;
    errno = 0;
    const float value = std::strtof(latin.constData(), &end);
    if (end != latin.constData() + latin.size())
        return std::nullopt;
    return value;
}

int pixelSide(float points, float multiplier)
{
    const float product = points * multiplier;
    // A side past what a QImage can address is as unusable as one that is no number.
    if (!std::isfinite(product) || product >= static_cast<float>(std::numeric_limits<int>::max()))
        throw AssetMakerError::corruptData();
    return static_cast<int>(product);
}

} // namespace

std::optional<AssetSize> parseAssetSize(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9.]+)x([0-9.]+)$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch() || match.lastCapturedIndex() != 2)
        return std::nullopt;
    const auto width = readFloat(match.captured(1));
    const auto height = readFloat(match.captured(2));
    if (!width || !height)
        return std::nullopt;
    return AssetSize {*width, *height, text};
}

QSize assetPixelSize(const AssetItem& item)
{
    const auto size = parseAssetSize(item.size);
    if (!size)
        throw AssetMakerError::corruptData();
    const auto scale = assetScaleFromText(item.scale.value_or(QStringLiteral("1x")));
    if (!scale)
        throw AssetMakerError::corruptData();
    const auto multiplier = static_cast<float>(assetScaleMultiplier(*scale));
    return {pixelSide(size->width, multiplier), pixelSide(size->height, multiplier)};
}

} // namespace quillbay
