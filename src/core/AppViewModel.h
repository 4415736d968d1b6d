#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QUuid>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "assets_maker/AppIconOption.h"
#include "assets_maker/AssetScale.h"
#include "assets_maker/AssetsMakerTab.h"
#include "assets_maker/ImageSetItem.h"
#include "core/state/URLBookmark.h"
#include "platform/UserPaths.h"
#include "xcode_cleanup/XcodeFileProperties.h"
#include "xcode_releases/Column.h"
#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

class Alerts;
class AssetMakerService;
class Defaults;
class FolderAuthorization;
class Pickers;
class SavedSpaceStore;
class Workspace;
class XcodeReleaseService;
class XcodeFileManager;
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
    // Stores the index only; applyAppearance shows it.
    void setAppearanceIndex(qint64 index);
    // 0 follows the system, 1 is light, any other value is dark. Takes effect at once in
    // every window.
    static void applyAppearance(qint64 index);

    // === Xcode cleanup: folder authorization, scan, selection, clean ====================
    // (AppViewModelAuthorization.cpp, AppViewModelCleanup.cpp)
    enum class CustomFolderKind {
        archives,
        derivedData,
    };
    static constexpr auto xcodeBundleIdentifier = "com.apple.dt.Xcode";

    // Where the Developer folder and the custom folder lists are, and the desktop to ask
    // about running applications. Loads the two custom folder lists; call once, right
    // after construction.
    void setCleanupPlatform(const UserPaths& userPaths, Workspace* workspace);
    // The open panel and the alert of the authorization request; not owned, may be null.
    void setCleanupPanels(Pickers* pickers, Alerts* alerts);

    bool isDeveloperFolderAuthorized() const { return m_isDeveloperFolderAuthorized; }
    bool isRequestingDeveloperFolderAuthorization() const { return m_isRequestingDeveloperFolderAuthorization; }
    bool hasFileManager() const { return m_fileManager != nullptr; }
    // The folder the file manager works on; empty without one.
    QString developerFolderPath() const { return m_developerFolderPath; }
    const QList<URLBookmark>& customArchivesFolders() const { return m_customArchivesFolders; }
    const QList<URLBookmark>& customDerivedDataFolders() const { return m_customDerivedDataFolders; }
    bool settingViewAlert() const { return m_settingViewAlert; }
    QString settingViewAlertTitle() const { return m_settingViewAlertTitle; }
    QString settingViewAlertMessage() const { return m_settingViewAlertMessage; }
    void dismissSettingViewAlert();

    void requestDeveloperFolderAuthorization(bool interactive);
    void chooseDeveloperFolder();
    void removeDeveloperFolderAuthorization();
    void addCustomFolder(CustomFolderKind kind);
    void removeCustomFolders(CustomFolderKind kind, const QSet<QUuid>& ids);

    const std::vector<XcodeFileProperties>& localFiles() const { return m_localFiles; }
    bool scanning() const { return m_scanning; }
    bool cleaning() const { return m_cleaning; }
    bool disableClean() const { return m_disableClean; }
    qint64 totalSize() const { return m_totalSize; }
    qint64 selectedSize() const { return m_selectedSize; }
    bool hasContent() const;

    void startInitialScan();
    void rescan();
    void clean();
    void selectAll(bool value);
    // The check mark of one row, read and written by id anywhere in the tree.
    bool isSelected(const QUuid& id) const;
    void setSelected(const QUuid& id, bool value);
    bool isXcodeRunning() const;

    // --- Xcode releases (AppViewModelReleases.cpp) ---------------------------------------
    // Feed order, replaced whole on every good decode; rows are told apart by `id`.
    const QList<XcodeRelease>& releases() const { return m_releases; }
    // The last fetch failed. With a list on show this is not shown to the user.
    bool hasError() const { return m_hasError; }
    // "Xcode " and the installed version, or empty when none was found.
    const QString& xcodeVersion() const { return m_xcodeVersion; }
    // The visible table columns after `version`, in table order.
    QList<Column> columns() const;
    static Column tableColumn(ReleaseColumn column);

    // The cached list first, then the network. Started once after construction.
    void loadReleases();
    // The network step alone ("Retry"). Overlapping runs are not guarded: the last
    // answer to arrive wins.
    void refreshReleases();
    // Decodes the bytes into `releases`; false (and the list untouched) when they don't.
    bool applyReleaseData(const QByteArray& bytes);

    XcodeReleaseService& xcodeReleaseService() const { return *m_xcodeReleaseService; }
    // The desktop: the one given to setCleanupPlatform, else the store's own.
    Workspace& workspace() const { return *m_workspace; }
    // Swaps the feed's service or the desktop for another, before the start-up tasks run
    // (tests, another feed host).
    void replaceXcodeReleaseService(std::unique_ptr<XcodeReleaseService> service);
    void replaceWorkspace(std::unique_ptr<Workspace> workspace);

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
    bool x1Selected() const { return isScaleSelected(AssetScale::x1); }
    bool x2Selected() const { return isScaleSelected(AssetScale::x2); }
    bool x3Selected() const { return isScaleSelected(AssetScale::x3); }
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
    void releasesChanged();
    void hasErrorChanged(bool hasError);
    void xcodeVersionChanged();
    // --- Xcode cleanup ---
    void localFilesChanged();
    // One location's rows were replaced during a scan (all rows are rebuilt).
    void cleanupStateChanged();
    void selectionChanged();
    void settingViewAlertChanged();
    void customFoldersChanged();
    // A clean deleted something and nothing failed: an action worth counting.
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
    // Every assets-maker input is set the same way: store it, then tell the screen.
    template <typename T> void changeAssetInput(T& field, T value);

    Defaults& m_defaults;
    SavedSpaceStore& m_savedSpaceStore;

    std::optional<QString> m_toastMessage;
    bool m_onlyRelease = true;
    std::array<bool, releaseColumnCount> m_releaseColumns {};
    qint64 m_appearanceIndex = 0;

    // === Xcode cleanup ===
    using FileManagerExecutor = SerialExecutor<XcodeFileManager>;

    void configureFileManager(const QString& url);
    void performScan(const std::shared_ptr<FileManagerExecutor>& manager);
    void scanNextLocation(const std::weak_ptr<FileManagerExecutor>& manager, int location);
    void finishScan(FileManagerExecutor& manager);
    void setLocalFiles(std::vector<XcodeFileProperties> files);
    void refreshSelectionState();
    void setScanning(bool value);
    void setCleaning(bool value);
    void setDeveloperFolderAuthorized(bool value);
    void showSettingViewAlert(const QString& title, const QString& message);
    QList<URLBookmark>& customFolders(CustomFolderKind kind);
    void saveAndRescanCustomFolders(CustomFolderKind kind);

    UserPaths m_userPaths = UserPaths::system();
    Workspace* m_workspace = nullptr;
    FolderAuthorization* m_folderAuthorization = nullptr;
    bool m_isDeveloperFolderAuthorized = false;

    // --- Xcode releases ------------------------------------------------------------------
    void initReleases();
    void startReleaseTasks();
    void setHasError(bool hasError);

    QList<XcodeRelease> m_releases;
    bool m_hasError = false;
    QString m_xcodeVersion;
    std::unique_ptr<Workspace> m_ownedWorkspace;
    std::unique_ptr<XcodeReleaseService> m_xcodeReleaseService;
    bool m_isRequestingDeveloperFolderAuthorization = false;
    std::shared_ptr<FileManagerExecutor> m_fileManager;
    QString m_developerFolderPath;
    QList<URLBookmark> m_customArchivesFolders;
    QList<URLBookmark> m_customDerivedDataFolders;
    bool m_settingViewAlert = false;
    QString m_settingViewAlertTitle;
    QString m_settingViewAlertMessage;
    std::vector<XcodeFileProperties> m_localFiles;
    bool m_scanning = false;
    bool m_toastAfterScan = false;
    bool m_cleaning = false;
    bool m_disableClean = true;
    qint64 m_totalSize = 0;
    qint64 m_selectedSize = 0;
    // === Assets maker ===
    void setGeneratingAssets(bool value);
    template <typename Work> void runAssetGeneration(const QString& outputFolder, Work work);

    AssetsMakerTab m_tabViewSelection = AssetsMakerTab::appIcon;
    AppIconOption m_macOSSelection = AppIconOption::none;
    AppIconOption m_iOSSelection = AppIconOption::none;
    AppIconOption m_watchOSSelection = AppIconOption::none;
    bool m_mergeIOSWatchOS = false;
    std::array<bool, 3> m_scaleSelected {true, true, true}; // by AssetScale
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
