#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QUuid>
#include <array>
#include <memory>
#include <optional>

#include "assets_maker/AppIconOption.h"
#include "assets_maker/AssetScale.h"
#include "assets_maker/AssetsMakerTab.h"
#include "assets_maker/ImageSetItem.h"

namespace quillbay {

class AssetMakerService;
class Defaults;
class SavedSpaceStore;
class Workspace;
template <typename Service> class SerialExecutor;

// The store of the three Xcode tools: release list and its columns, the cleanup scan and
// clean state, the asset-maker inputs, the appearance and the custom folder lists.
// UI thread only; every persisted property writes its key on each assignment.
class AppViewModel : public QObject
{
    Q_OBJECT

public:
    // The eleven switchable release columns, in the order of the columns popover.
    enum class ReleaseColumn {
        release,
        date,
        required,
        swift,
        macOS,
        iOS,
        watchOS,
        tvOS,
        visionOS,
        download,
        releaseNotes,
    };
    static constexpr int releaseColumnCount = 11;

    static constexpr auto onlyReleaseKey = "OnlyRelease";
    static constexpr auto appearanceIndexKey = "AppearanceIndex";
    static constexpr auto developerFolderBookmarkKey = "DeveloperFolderBookmarkKey";
    static constexpr auto suppressXcodeIsRunningAlertKey = "SuppressXcodeIsRunningAlert";
    static constexpr auto suppressDeleteWarningAlertKey = "SuppressDeleteWarningAlert";

    static QString releaseColumnKey(ReleaseColumn column);
    static bool releaseColumnDefault(ReleaseColumn column);

    AppViewModel(Defaults& defaults, SavedSpaceStore& savedSpaceStore, QObject* parent = nullptr);
    ~AppViewModel() override;

    Defaults& defaults() const { return m_defaults; }
    SavedSpaceStore& savedSpaceStore() const { return m_savedSpaceStore; }

    // --- Toast ---------------------------------------------------------------------
    const std::optional<QString>& toastMessage() const { return m_toastMessage; }
    void setToast(const QString& text);
    void clearToast();

    // --- Release table preferences ---------------------------------------------------
    bool onlyRelease() const { return m_onlyRelease; }
    void setOnlyRelease(bool value);
    bool isReleaseColumnVisible(ReleaseColumn column) const;
    void setReleaseColumnVisible(ReleaseColumn column, bool visible);

    // --- Appearance ------------------------------------------------------------------
    qint64 appearanceIndex() const { return m_appearanceIndex; }
    void setAppearanceIndex(qint64 index);

    // --- Developer folder authorization ------------------------------------------------
    bool isDeveloperFolderAuthorized() const { return m_isDeveloperFolderAuthorized; }

    // === Assets maker (AppViewModelAssets.cpp) ==========================================
    // The inputs of both tabs live as long as the process and are never saved. A run copies
    // them, so later edits on screen don't reach it; generatingAssets keeps a second run out.
    AssetsMakerTab tabViewSelection() const { return m_tabViewSelection; }
    void setTabViewSelection(AssetsMakerTab tab);
    AppIconOption macOSSelection() const { return m_macOSSelection; }
    void setMacOSSelection(AppIconOption option);
    AppIconOption iOSSelection() const { return m_iOSSelection; }
    void setIOSSelection(AppIconOption option);
    AppIconOption watchOSSelection() const { return m_watchOSSelection; }
    void setWatchOSSelection(AppIconOption option);
    bool mergeIOSWatchOS() const { return m_mergeIOSWatchOS; }
    void setMergeIOSWatchOS(bool value);
    bool x1Selected() const { return m_x1Selected; }
    bool x2Selected() const { return m_x2Selected; }
    bool x3Selected() const { return m_x3Selected; }
    bool isScaleSelected(AssetScale scale) const;
    void setScaleSelected(AssetScale scale, bool value);
    bool setSize() const { return m_setSize; }
    void setSetSize(bool value);
    qint64 width() const { return m_width; }
    void setWidth(qint64 value);
    qint64 height() const { return m_height; }
    void setHeight(qint64 value);
    const std::optional<QByteArray>& appIconData() const { return m_appIconData; }
    const QList<ImageSetItem>& imageSet() const { return m_imageSet; }
    bool generatingAssets() const { return m_generatingAssets; }

    QList<AssetScale> selectedScales() const;
    bool isAppIconGenerationDisabled() const;
    bool isMergeDisabled() const;
    bool isImageSetGenerationDisabled() const;
    // "2x: (88 × 88)" while a valid set size is on, else the scale's text.
    QString scaleLabel(AssetScale scale) const;

    // A dropped image for the app icon tab, kept byte for byte; bytes that are no image
    // leave the previous one and show the corrupt-file text.
    void setAppIconImage(const QByteArray& data);
    // A drop that could not be read at all: its description becomes the toast.
    void reportAssetDropFailure(const QString& description);
    // One dropped file for the image-set list; refused (with a toast) when it is no image
    // or its name equals one in the list once both are composed and lowercased.
    void addImageSetFile(const QUrl& url);
    void removeImageSetItem(const QUuid& id);

    // Start a run into the folder the save panel gave; the service creates it.
    void generateAppIcons(const QString& outputFolder);
    void generateImageSet(const QString& outputFolder);

    // The desktop that reveals a finished folder; not owned, may be null.
    void setAssetsWorkspace(Workspace* workspace) { m_assetsWorkspace = workspace; }
    // Where the five icon templates are; the program's resources unless a test says otherwise.
    void setAssetTemplateFolder(const QString& folder) { m_assetTemplateFolder = folder; }

signals:
    // --- Assets maker ---
    void assetInputsChanged();
    void generatingAssetsChanged(bool generating);
    // A run that finished without failure: an action worth counting.
    void successfulActionCompleted(const QDateTime& when);

    void toastMessageChanged();
    void onlyReleaseChanged(bool value);
    void releaseColumnsChanged();
    void appearanceIndexChanged(qint64 index);
    void developerFolderAuthorizationChanged();

private:
    Defaults& m_defaults;
    SavedSpaceStore& m_savedSpaceStore;

    std::optional<QString> m_toastMessage;
    bool m_onlyRelease = true;
    std::array<bool, releaseColumnCount> m_releaseColumns {};
    qint64 m_appearanceIndex = 0;
    bool m_isDeveloperFolderAuthorized = false;

    // === Assets maker ===
    void setGeneratingAssets(bool value);
    template <typename Work> void runAssetGeneration(const QString& outputFolder, Work work);

    AssetsMakerTab m_tabViewSelection = AssetsMakerTab::appIcon;
    AppIconOption m_macOSSelection = AppIconOption::none;
    AppIconOption m_iOSSelection = AppIconOption::none;
    AppIconOption m_watchOSSelection = AppIconOption::none;
    bool m_mergeIOSWatchOS = false;
    bool m_x1Selected = true;
    bool m_x2Selected = true;
    bool m_x3Selected = true;
    bool m_setSize = false;
    qint64 m_width = 44;
    qint64 m_height = 44;
    std::optional<QByteArray> m_appIconData;
    QList<ImageSetItem> m_imageSet;
    bool m_generatingAssets = false;
    Workspace* m_assetsWorkspace = nullptr;
    QString m_assetTemplateFolder;
    // A fresh service per run; kept until the next run so the finished thread is joined
    // there, or at destruction, never on the worker itself.
    std::shared_ptr<SerialExecutor<AssetMakerService>> m_assetMaker;
};

} // namespace quillbay
