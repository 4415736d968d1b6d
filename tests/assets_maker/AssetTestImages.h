#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QString>
#include <optional>

#include "assets_maker/AssetMakerError.h"

namespace quillbay::test {

// A w x h PNG filled with `fill` whose pixel (0, 0) is `corner`, so a letterbox shows
// which colour it took.
QByteArray cornerMarkedPng(int width, int height, const QColor& corner, const QColor& fill);

// The PNG file as decoded from disk; null when it is missing or no PNG.
inline QImage readPng(const QString& path)
{
    return QImage(path, "PNG");
}

// True when the file's colour type carries an alpha channel (RGBA or grey+alpha), read
// from the IHDR chunk rather than from what a decoder makes of it.
bool pngHasAlphaChannel(const QString& path);

// Writes a template folder file from JSON text.
void writeTemplate(const QString& folder, const QString& name, const QByteArray& json);

// The kind of the AssetMakerError that `run` throws; none when it returns.
template <typename Run> std::optional<AssetMakerError::Kind> errorKind(Run&& run)
{
    try {
        run();
    } catch (const AssetMakerError& error) {
        return error.kind();
    }
    return std::nullopt;
}

} // namespace quillbay::test
