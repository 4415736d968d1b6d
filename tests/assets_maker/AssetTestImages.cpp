#include "AssetTestImages.h"

#include <QBuffer>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace quillbay::test {

QByteArray cornerMarkedPng(int width, int height, const QColor& corner, const QColor& fill)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(fill);
    image.setPixelColor(0, 0, corner);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

bool pngHasAlphaChannel(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(33);
    // Signature (8), IHDR length and type (8), width, height (8), depth (1), colour type.
    if (head.size() < 26 || head.mid(12, 4) != "IHDR")
        return false;
    const int colourType = static_cast<unsigned char>(head.at(25));
    return colourType == 4 || colourType == 6;
}

void writeTemplate(const QString& folder, const QString& name, const QByteArray& json)
{
    QDir().mkpath(folder);
    QFile file(QDir(folder).filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(json);
}

} // namespace quillbay::test
