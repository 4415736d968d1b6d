#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>

#include "assets_maker/AppIconOption.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetImageRenderer.h"
#include "assets_maker/AssetScale.h"
#include "assets_maker/ImageSetItem.h"

namespace quillbay {

// Draws and writes icon sets and image sets. Its calls run one at a time on their own
// thread (a SerialExecutor owns it); within one set the entries are drawn and encoded
// on the global thread pool, since PNG encoding is most of the cost, and then written in
// the set's order, so what lies on disk after a failure is the same as if every entry
// had been done one after the other. Every failure is an AssetMakerError; files written
// before it stay on disk.
class AssetMakerService
{
public:
    // Largest side, in pixels, of an image-set file made to a set size.
    static constexpr qint64 maximumTargetSide = 8192;

    // The icon sets of the chosen platforms under outputFolder: macOS (with alpha) when its
    // option is allSize; iOS and watchOS (alpha removed) each into its own set, or joined
    // into the merged set when merge is on and both options are other than none.
    void generateAppIcons(const QByteArray& imageData,
                          AppIconOption macOS,
                          AppIconOption iOS,
                          AppIconOption watchOS,
                          bool merge,
                          const QString& templateFolder,
                          const QString& outputFolder);

    // One PNG per entry, named by its filename, then "Contents.json".
    void generateIconSet(const AssetContent& content,
                         const QByteArray& imageData,
                         const QString& setFolder,
                         bool removesAlpha);

    // name@1x.png ... name@3x.png per item, flat in outputFolder. Without setSize the
    // image as given is the largest selected scale.
    void generateImageSet(const QList<ImageSetItem>& items,
                          const QList<AssetScale>& scales,
                          bool setSize,
                          qint64 width,
                          qint64 height,
                          const QString& outputFolder);

    // False for no scales, a side below 1, or a side times the largest multiplier that
    // overflows or passes maximumTargetSide.
    static bool isValidTargetSize(qint64 width, qint64 height, const QList<AssetScale>& scales);

    // The form in which two image-set names are compared: canonically composed, lower case.
    static QString nameKey(const QString& fileName);

    // The canvas of one image-set file: ceil(base * s / M) on each side.
    static QSize imageSetCanvas(const QSize& base, int multiplier, int largestMultiplier);

    // zlib level of the written files; the default was chosen by measurement.
    void setCompressionLevel(int level) { m_compressionLevel = level; }

private:
    int m_compressionLevel = AssetImageRenderer::defaultCompressionLevel;
};

} // namespace quillbay
