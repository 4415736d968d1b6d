#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QSize>

namespace quillbay {

// The drawing half of the maker: decoding, fitting an image on a canvas and the two PNG
// forms. Pure functions of their inputs, safe to call from several threads at once.
namespace AssetImageRenderer {

// zlib level of the written PNG files, chosen by measurement (docs/PERFORMANCE.md): the
// lightest level whose files stay within 1.2x of ImageMagick's on flat and grainy icons;
// zlib's default level 6 takes 1.4 to 2.2 times as long for 4 to 20% fewer bytes.
inline constexpr int defaultCompressionLevel = 3;

// An image in premultiplied ARGB, the form every fit draws from. Throws AssetMakerError
// (corrupt file) when the bytes give no image.
QImage decode(const QByteArray& bytes);

// The colour of the pixel at (0, 0), which a letterboxed canvas continues into its
// margins; transparent for an empty image.
QColor background(const QImage& source);

// Fits the source on a canvas of `canvas` pixels: scale factor min(W/w, H/h), drawn size
// floor(f*w) x floor(f*h), centred with the half-margins rounded (the vertical one counted
// from the bottom edge), over a fill of background(source). Keeps the aspect ratio and
// crops nothing; smaller sources are scaled up. Throws AssetMakerError (corrupt data)
// when the canvas can't be allocated.
QImage resized(const QImage& source, const QSize& canvas);

// The PNG bytes of a drawn image. With removesAlpha the picture is composited over black
// and the file is RGB; otherwise it is RGBA. Throws AssetMakerError (save image failed).
QByteArray png(const QImage& image, bool removesAlpha, int compressionLevel = defaultCompressionLevel);

} // namespace AssetImageRenderer

} // namespace quillbay
