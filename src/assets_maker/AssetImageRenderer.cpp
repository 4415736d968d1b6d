#include "assets_maker/AssetImageRenderer.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "assets_maker/AssetMakerError.h"

namespace quillbay::AssetImageRenderer {

namespace {

// A Lanczos (a = 3) resampler on premultiplied ARGB: sharper than Qt's area averaging,
// which visibly softens small icons. Beyond a reduction of kLanczosReach the picture is
// first averaged down to kLanczosReach times the target, which keeps the filter at 18
// taps or fewer and costs little sharpness.
constexpr int kLanczosReach = 3;

float lanczos3(float x)
{
    x = std::fabs(x);
    if (x < 1e-6f)
        return 1.0f;
    if (x >= 3.0f)
        return 0.0f;
    const float pix = std::numbers::pi_v<float> * x;
    return 3.0f * std::sin(pix) * std::sin(pix / 3.0f) / (pix * pix);
}

struct Taps
{
    int first = 0;
    std::vector<float> weights;
};

// The source samples (clamped at the edges) and normalized weights of each target sample.
std::vector<Taps> tapsFor(int sourceLength, int targetLength)
{
    const float scale = float(sourceLength) / float(targetLength);
    const float stretch = std::max(scale, 1.0f);
    const float support = 3.0f * stretch;
    std::vector<Taps> all(static_cast<std::size_t>(targetLength));
    for (int i = 0; i < targetLength; ++i) {
        const float centre = (float(i) + 0.5f) * scale - 0.5f;
        const int first = static_cast<int>(std::floor(centre - support)) + 1;
        const int last = static_cast<int>(std::floor(centre + support));
        Taps& taps = all[static_cast<std::size_t>(i)];
        taps.first = first;
        float sum = 0;
        for (int j = first; j <= last; ++j) {
            const float weight = lanczos3((float(j) - centre) / stretch);
            taps.weights.push_back(weight);
            sum += weight;
        }
        for (float& weight : taps.weights)
            weight /= sum;
    }
    return all;
}

QImage lanczosScaled(const QImage& source, int width, int height)
{
    const int sourceWidth = source.width();
    const int sourceHeight = source.height();
    const std::vector<Taps> columns = tapsFor(sourceWidth, width);
    const std::vector<Taps> rows = tapsFor(sourceHeight, height);

    // Horizontal pass into floats, four channels per pixel in the order of QRgb's bytes.
    std::vector<float> between(static_cast<std::size_t>(width) * sourceHeight * 4);
    for (int y = 0; y < sourceHeight; ++y) {
        const auto* line = reinterpret_cast<const uchar*>(source.constScanLine(y));
        float* out = between.data() + static_cast<std::size_t>(y) * width * 4;
        for (int x = 0; x < width; ++x) {
            const Taps& taps = columns[static_cast<std::size_t>(x)];
            float c[4] = {0, 0, 0, 0};
            for (std::size_t k = 0; k < taps.weights.size(); ++k) {
                const int sx = std::clamp(taps.first + static_cast<int>(k), 0, sourceWidth - 1);
                const uchar* p = line + sx * 4;
                const float w = taps.weights[k];
                c[0] += w * p[0];
                c[1] += w * p[1];
                c[2] += w * p[2];
                c[3] += w * p[3];
            }
            std::copy(c, c + 4, out + x * 4);
        }
    }

    QImage result(width, height, QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        throw AssetMakerError::corruptData();
    const int alphaIndex = QSysInfo::ByteOrder == QSysInfo::LittleEndian ? 3 : 0;
    std::vector<float> sum(static_cast<std::size_t>(width) * 4);
    for (int y = 0; y < height; ++y) {
        const Taps& taps = rows[static_cast<std::size_t>(y)];
        std::fill(sum.begin(), sum.end(), 0.0f);
        for (std::size_t k = 0; k < taps.weights.size(); ++k) {
            const int sy = std::clamp(taps.first + static_cast<int>(k), 0, sourceHeight - 1);
            const float* in = between.data() + static_cast<std::size_t>(sy) * width * 4;
            const float w = taps.weights[k];
            for (int i = 0; i < width * 4; ++i)
                sum[static_cast<std::size_t>(i)] += w * in[i];
        }
        auto* out = result.scanLine(y);
        for (int x = 0; x < width; ++x) {
            const float* c = sum.data() + x * 4;
            // Ringing may overshoot; premultiplied colour never exceeds its alpha.
            const float alpha = std::clamp(c[alphaIndex], 0.0f, 255.0f);
            for (int i = 0; i < 4; ++i) {
                const float limit = i == alphaIndex ? 255.0f : alpha;
                out[x * 4 + i] = static_cast<uchar>(std::lround(std::clamp(c[i], 0.0f, limit)));
            }
        }
    }
    return result;
}

QImage scaledForCanvas(const QImage& source, int width, int height)
{
    if (source.width() > kLanczosReach * width && source.height() > kLanczosReach * height) {
        QImage reduced = source.scaled(kLanczosReach * width, kLanczosReach * height, Qt::IgnoreAspectRatio,
                                       Qt::SmoothTransformation);
        if (reduced.isNull())
            throw AssetMakerError::corruptData();
        if (reduced.format() != QImage::Format_ARGB32_Premultiplied)
            reduced.convertTo(QImage::Format_ARGB32_Premultiplied);
        return lanczosScaled(reduced, width, height);
    }
    return lanczosScaled(source, width, height);
}

} // namespace

QImage decode(const QByteArray& bytes)
{
    QImage image;
    if (bytes.isEmpty() || !image.loadFromData(bytes) || image.isNull())
        throw AssetMakerError::corruptFile();
    if (image.format() != QImage::Format_ARGB32_Premultiplied)
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        throw AssetMakerError::corruptFile();
    return image;
}

QColor background(const QImage& source)
{
    if (source.isNull() || source.width() < 1 || source.height() < 1)
        return Qt::transparent;
    return source.pixelColor(0, 0);
}

QImage resized(const QImage& source, const QSize& canvas)
{
    if (canvas.width() < 1 || canvas.height() < 1)
        throw AssetMakerError::corruptData();
    const double w = source.width();
    const double h = source.height();
    const double W = canvas.width();
    const double H = canvas.height();
    const double factor = std::min(W / w, H / h);
    const int drawnWidth = static_cast<int>(std::floor(factor * w));
    const int drawnHeight = static_cast<int>(std::floor(factor * h));
    const int x = static_cast<int>(std::round((W - drawnWidth) / 2.0));
    // The margin is rounded from the bottom edge, so an odd leftover row lands on top.
    const int y = canvas.height() - drawnHeight - static_cast<int>(std::round((H - drawnHeight) / 2.0));

    QImage scaled;
    if (drawnWidth > 0 && drawnHeight > 0) {
        scaled = source.size() == QSize(drawnWidth, drawnHeight) ? source
                                                                 : scaledForCanvas(source, drawnWidth, drawnHeight);
    }

    const QColor fill = background(source);
    const bool coversCanvas = !scaled.isNull() && scaled.size() == canvas;
    // Drawing over a transparent fill, or an opaque picture over anything, changes no pixel:
    // the scaled image already is the canvas.
    if (coversCanvas && (fill.alpha() == 0 || !source.hasAlphaChannel()))
        return scaled;

    QImage result(canvas, QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        throw AssetMakerError::corruptData();
    result.fill(fill);
    if (!scaled.isNull()) {
        QPainter painter(&result);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.drawImage(QPoint(x, y), scaled);
    }
    return result;
}

QByteArray png(const QImage& image, bool removesAlpha, int compressionLevel)
{
    if (image.isNull())
        throw AssetMakerError::saveImageFailed();
    QImage form;
    if (removesAlpha) {
        // Qt's own conversions to an opaque format unpremultiply first, which would show
        // edge pixels at full strength; reading the premultiplied words as opaque ones
        // composites the picture over black instead, which is what flattening means here.
        form = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (!form.reinterpretAsFormat(QImage::Format_RGB32))
            throw AssetMakerError::saveImageFailed();
    } else {
        form = image.convertToFormat(QImage::Format_ARGB32);
    }
    if (form.isNull())
        throw AssetMakerError::saveImageFailed();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    // Qt's PNG writer takes the zlib level through the quality: level = (100 - q) * 9 / 91.
    writer.setQuality(100 - (compressionLevel * 91 + 8) / 9);
    if (!writer.write(form) || bytes.isEmpty())
        throw AssetMakerError::saveImageFailed();
    return bytes;
}

} // namespace quillbay::AssetImageRenderer
