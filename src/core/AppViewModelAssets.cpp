// The assets maker's half of AppViewModel: its inputs and the two generation runs.

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetImageRenderer.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetMakerService.h"
#include "core/AppViewModel.h"
#include "foundation/SerialExecutor.h"
#include "platform/Workspace.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

// The PNG form of a dropped file is only held in memory until a run draws from it, so it
// is encoded for speed rather than size.
constexpr int kDroppedImageCompressionLevel = 1;

} // namespace

template <typename T> void AppViewModel::changeAssetInput(T& field, T value)
{
    field = value;
    emit assetInputsChanged();
}

void AppViewModel::setTabViewSelection(AssetsMakerTab tab)
{
    changeAssetInput(m_tabViewSelection, tab);
}
void AppViewModel::setMacOSSelection(AppIconOption option)
{
    changeAssetInput(m_macOSSelection, option);
}
void AppViewModel::setIOSSelection(AppIconOption option)
{
    changeAssetInput(m_iOSSelection, option);
}
void AppViewModel::setWatchOSSelection(AppIconOption option)
{
    changeAssetInput(m_watchOSSelection, option);
}
void AppViewModel::setMergeIOSWatchOS(bool value)
{
    changeAssetInput(m_mergeIOSWatchOS, value);
}
void AppViewModel::setSetSize(bool value)
{
    changeAssetInput(m_setSize, value);
}
void AppViewModel::setWidth(qint64 value)
{
    changeAssetInput(m_width, value);
}
void AppViewModel::setHeight(qint64 value)
{
    changeAssetInput(m_height, value);
}

bool AppViewModel::isScaleSelected(AssetScale scale) const
{
    return m_scaleSelected[static_cast<std::size_t>(scale)];
}

void AppViewModel::setScaleSelected(AssetScale scale, bool value)
{
    changeAssetInput(m_scaleSelected[static_cast<std::size_t>(scale)], value);
}

QList<AssetScale> AppViewModel::selectedScales() const
{
    QList<AssetScale> scales;
    for (const AssetScale scale : allAssetScales) {
        if (isScaleSelected(scale))
            scales.append(scale);
    }
    return scales;
}

bool AppViewModel::isAppIconGenerationDisabled() const
{
    const bool noPlatform = m_macOSSelection == AppIconOption::none && m_iOSSelection == AppIconOption::none
        && m_watchOSSelection == AppIconOption::none;
    return m_generatingAssets || noPlatform || !m_appIconData;
}

bool AppViewModel::isMergeDisabled() const
{
    return m_iOSSelection == AppIconOption::none || m_watchOSSelection == AppIconOption::none || !m_appIconData;
}

bool AppViewModel::isImageSetGenerationDisabled() const
{
    const QList<AssetScale> scales = selectedScales();
    return m_generatingAssets || scales.isEmpty() || m_imageSet.isEmpty()
        || (m_setSize && !AssetMakerService::isValidTargetSize(m_width, m_height, scales));
}

QString AppViewModel::scaleLabel(AssetScale scale) const
{
    const QString text = assetScaleText(scale);
    if (!m_setSize || !AssetMakerService::isValidTargetSize(m_width, m_height, {scale}))
        return text;
    const int multiplier = assetScaleMultiplier(scale);
    return text + u": ("_s + QString::number(m_width * multiplier) + u" × "_s + QString::number(m_height * multiplier)
        + u")"_s;
}

void AppViewModel::setAppIconImage(const QByteArray& data)
{
    if (QImage::fromData(data).isNull()) {
        setToast(AssetMakerError::corruptFile().localizedDescription());
        return;
    }
    m_appIconData = data;
    emit assetInputsChanged();
}

void AppViewModel::reportAssetDropFailure(const QString& description)
{
    setToast(description);
}

void AppViewModel::addImageSetFile(const QUrl& url)
{
    try {
        if (!url.isValid() || !url.isLocalFile())
            throw AssetMakerError::corruptFile();
        const QString path = url.toLocalFile();
        QImageReader reader(path);
        reader.setAutoTransform(true);
        const QImage image = reader.read();
        if (image.isNull())
            throw AssetMakerError::corruptFile();
        ImageSetItem item;
        item.imageData = AssetImageRenderer::png(image, false, kDroppedImageCompressionLevel);
        item.fileName = QFileInfo(path).completeBaseName();
        const QString key = AssetMakerService::nameKey(item.fileName);
        for (const ImageSetItem& existing : std::as_const(m_imageSet)) {
            if (AssetMakerService::nameKey(existing.fileName) == key)
                throw AssetMakerError::fileExists();
        }
        item.id = QUuid::createUuid();
        m_imageSet.append(std::move(item));
        emit assetInputsChanged();
    } catch (const AssetMakerError& error) {
        setToast(error.localizedDescription());
    }
}

void AppViewModel::removeImageSetItem(const QUuid& id)
{
    const auto removed = m_imageSet.removeIf([&id](const ImageSetItem& item) { return item.id == id; });
    if (removed > 0)
        emit assetInputsChanged();
}

void AppViewModel::setGeneratingAssets(bool value)
{
    if (m_generatingAssets == value)
        return;
    m_generatingAssets = value;
    emit generatingAssetsChanged(value);
    emit assetInputsChanged();
}

template <typename Work> void AppViewModel::runAssetGeneration(const QString& outputFolder, Work work)
{
    setGeneratingAssets(true);
    m_assetMaker = std::make_shared<SerialExecutor<AssetMakerService>>(std::make_unique<AssetMakerService>());
    m_assetMaker->run(std::move(work))
        .then(this,
              [this, outputFolder] {
                  emit successfulActionCompleted(QDateTime::currentDateTime());
                  if (m_assetsWorkspace)
                      m_assetsWorkspace->revealFiles({outputFolder});
                  setGeneratingAssets(false);
              })
        .onFailed(this,
                  [this](const AssetMakerError& error) {
                      setToast(error.localizedDescription());
                      setGeneratingAssets(false);
                  })
        .onFailed(this, [this] {
            // Only allocation failures get here; the run still ends and says so.
            setToast(AssetMakerError::writeFailed(QString(), QString()).localizedDescription());
            setGeneratingAssets(false);
        });
}

void AppViewModel::generateAppIcons(const QString& outputFolder)
{
    if (m_generatingAssets)
        return;
    const QString templateFolder
        = m_assetTemplateFolder.isEmpty() ? AssetCatalogLayout::bundledTemplateFolder() : m_assetTemplateFolder;
    if (!m_appIconData || !QDir(templateFolder).exists()) {
        setToast(AssetMakerError::noSuchFile().localizedDescription());
        return;
    }
    runAssetGeneration(outputFolder,
                       [data = *m_appIconData, macOS = m_macOSSelection, iOS = m_iOSSelection,
                        watchOS = m_watchOSSelection, merge = m_mergeIOSWatchOS, templateFolder,
                        outputFolder](AssetMakerService& service) {
                           service.generateAppIcons(data, macOS, iOS, watchOS, merge, templateFolder, outputFolder);
                       });
}

void AppViewModel::generateImageSet(const QString& outputFolder)
{
    if (m_generatingAssets)
        return;
    runAssetGeneration(outputFolder,
                       [items = m_imageSet, scales = selectedScales(), setSize = m_setSize, width = m_width,
                        height = m_height, outputFolder](AssetMakerService& service) {
                           service.generateImageSet(items, scales, setSize, width, height, outputFolder);
                       });
}

} // namespace quillbay
