#include "assets_maker/AssetImageRenderer.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <cmath>

#include "assets_maker/AssetMakerError.h"

namespace quillbay::AssetImageRenderer {

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
        scaled = source.size() == QSize(drawnWidth, drawnHeight)
            ? source
            : source.scaled(drawnWidth, drawnHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (scaled.isNull())
            throw AssetMakerError::corruptData();
        if (scaled.format() != QImage::Format_ARGB32_Premultiplied)
            scaled.convertTo(QImage::Format_ARGB32_Premultiplied);
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
    const QImage form
        = removesAlpha ? image.convertToFormat(QImage::Format_RGB888) : image.convertToFormat(QImage::Format_ARGB32);
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
