#include "assets_maker/AssetMakerService.h"

#include <QDir>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <QtConcurrent/QtConcurrentMap>

#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"
#include "foundation/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

// One file to draw: the canvas, and afterwards either its PNG bytes or the failure.
struct RenderJob
{
    QSize canvas;
    QByteArray png;
    std::optional<AssetMakerError> error;
};

// Draws and encodes every job on the global pool, the largest canvases first so that the
// two long encodes don't end up queued behind each other on one core.
void renderAll(std::vector<RenderJob>& jobs, const QImage& source, bool removesAlpha, int compressionLevel)
{
    std::vector<RenderJob*> order;
    order.reserve(jobs.size());
    for (RenderJob& job : jobs)
        order.push_back(&job);
    std::stable_sort(order.begin(), order.end(), [](const RenderJob* a, const RenderJob* b) {
        return qint64(a->canvas.width()) * a->canvas.height() > qint64(b->canvas.width()) * b->canvas.height();
    });
    QtConcurrent::blockingMap(order, [&source, removesAlpha, compressionLevel](RenderJob* job) {
        try {
            const QImage drawn = AssetImageRenderer::resized(source, job->canvas);
            job->png = AssetImageRenderer::png(drawn, removesAlpha, compressionLevel);
        } catch (const AssetMakerError& error) {
            job->error = error;
        } catch (const std::bad_alloc&) {
            job->error = AssetMakerError::corruptData();
        }
    });
}

void makeFolder(const QString& path)
{
    if (!QDir().mkpath(path))
        throw AssetMakerError::writeFailed(QDir(path).dirName(), QString());
}

void writeFile(const QString& folder, const QString& name, const QByteArray& bytes)
{
    QString error;
    if (!writeFileAtomically(QDir(folder).filePath(name), bytes, &error))
        throw AssetMakerError::writeFailed(name, error);
}

int largestMultiplier(const QList<AssetScale>& scales)
{
    int largest = 1;
    for (const AssetScale scale : scales)
        largest = std::max(largest, assetScaleMultiplier(scale));
    return largest;
}

} // namespace

void AssetMakerService::generateAppIcons(const QByteArray& imageData,
                                         AppIconOption macOS,
                                         AppIconOption iOS,
                                         AppIconOption watchOS,
                                         bool merge,
                                         const QString& templateFolder,
                                         const QString& outputFolder)
{
    // Nothing is written for bytes that are no image.
    AssetImageRenderer::decode(imageData);
    makeFolder(outputFolder);
    const QDir output(outputFolder);

    if (macOS == AppIconOption::allSize) {
        const AssetContent content = readAssetContent(templateFolder, AssetCatalogLayout::macOSTemplateFileName());
        generateIconSet(content, imageData, output.filePath(AssetCatalogLayout::macOSSetFolder()), false);
    }

    const bool merging = merge && iOS != AppIconOption::none && watchOS != AppIconOption::none;
    AssetContent merged;
    if (const auto name = appIconTemplateName(iOS, u"iOS"_s)) {
        const AssetContent content = readAssetContent(templateFolder, *name + u".json"_s);
        if (merging)
            merged.images += content.images;
        else
            generateIconSet(content, imageData, output.filePath(AssetCatalogLayout::iOSSetFolder()), true);
    }
    if (const auto name = appIconTemplateName(watchOS, u"watchOS"_s)) {
        const AssetContent content = readAssetContent(templateFolder, *name + u".json"_s);
        if (merging)
            merged.images += content.images;
        else
            generateIconSet(content, imageData, output.filePath(AssetCatalogLayout::watchOSSetFolder()), true);
    }
    if (merging)
        generateIconSet(merged, imageData, output.filePath(AssetCatalogLayout::mergedSetFolder()), true);
}

void AssetMakerService::generateIconSet(const AssetContent& content,
                                        const QByteArray& imageData,
                                        const QString& setFolder,
                                        bool removesAlpha)
{
    const QImage source = AssetImageRenderer::decode(imageData);
    makeFolder(setFolder);

    // Sizes are checked in the template's order; the entries before the first bad one are
    // still made, as they would have been one at a time.
    std::vector<RenderJob> jobs;
    std::optional<AssetMakerError> sizeError;
    for (const AssetItem& item : content.images) {
        try {
            jobs.push_back(RenderJob {assetPixelSize(item), {}, std::nullopt});
        } catch (const AssetMakerError& error) {
            sizeError = error;
            break;
        }
    }
    renderAll(jobs, source, removesAlpha, m_compressionLevel);

    for (std::size_t i = 0; i < jobs.size(); ++i) {
        if (jobs[i].error)
            throw *jobs[i].error;
        writeFile(setFolder, content.images[static_cast<qsizetype>(i)].filename, jobs[i].png);
    }
    if (sizeError)
        throw *sizeError;
    writeAssetContents(content, setFolder);
}

void AssetMakerService::generateImageSet(const QList<ImageSetItem>& items,
                                         const QList<AssetScale>& scales,
                                         bool setSize,
                                         qint64 width,
                                         qint64 height,
                                         const QString& outputFolder)
{
    if (setSize && !isValidTargetSize(width, height, scales))
        throw AssetMakerError::missingTargetSize();

    QSet<QString> names;
    for (const ImageSetItem& item : items) {
        const QString key = nameKey(item.fileName);
        if (names.contains(key))
            throw AssetMakerError::fileExists();
        names.insert(key);
    }

    makeFolder(outputFolder);
    const int largest = largestMultiplier(scales);
    for (const ImageSetItem& item : items) {
        const QImage source = AssetImageRenderer::decode(item.imageData);
        // Checked above: both products are at most maximumTargetSide.
        const QSize base
            = setSize ? QSize(static_cast<int>(width * largest), static_cast<int>(height * largest)) : source.size();
        std::vector<RenderJob> jobs;
        for (const AssetScale scale : scales)
            jobs.push_back(RenderJob {imageSetCanvas(base, assetScaleMultiplier(scale), largest), {}, std::nullopt});
        renderAll(jobs, source, false, m_compressionLevel);
        for (qsizetype i = 0; i < scales.size(); ++i) {
            const RenderJob& job = jobs[static_cast<std::size_t>(i)];
            if (job.error)
                throw *job.error;
            writeFile(outputFolder, item.fileName + u"@"_s + assetScaleText(scales[i]) + u".png"_s, job.png);
        }
    }
}

bool AssetMakerService::isValidTargetSize(qint64 width, qint64 height, const QList<AssetScale>& scales)
{
    if (scales.isEmpty())
        return false;
    if (width < 1 || height < 1)
        return false;
    const qint64 multiplier = largestMultiplier(scales);
    qint64 scaledWidth = 0;
    qint64 scaledHeight = 0;
    if (qMulOverflow(width, multiplier, &scaledWidth) || qMulOverflow(height, multiplier, &scaledHeight))
        return false;
    return scaledWidth <= maximumTargetSide && scaledHeight <= maximumTargetSide;
}

QString AssetMakerService::nameKey(const QString& fileName)
{
    return fileName.normalized(QString::NormalizationForm_C).toLower();
}

QSize AssetMakerService::imageSetCanvas(const QSize& base, int multiplier, int largestMultiplier)
{
    const auto side
        = [&](int length) { return static_cast<int>(std::ceil(double(length) * multiplier / largestMultiplier)); };
    return {side(base.width()), side(base.height())};
}

} // namespace quillbay
