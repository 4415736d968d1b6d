#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <array>
#include <memory>
#include <optional>

#include "xcode_releases/Column.h"
#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

class Defaults;
class SavedSpaceStore;
class Workspace;
class XcodeReleaseService;

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
    Workspace& workspace() const { return *m_workspace; }
    // Swaps the feed's service or the desktop for another, before the start-up tasks run
    // (tests, another feed host).
    void replaceXcodeReleaseService(std::unique_ptr<XcodeReleaseService> service);
    void replaceWorkspace(std::unique_ptr<Workspace> workspace);

signals:
    void releasesChanged();
    void hasErrorChanged(bool hasError);
    void xcodeVersionChanged();

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

    // --- Xcode releases ------------------------------------------------------------------
    void initReleases();
    void startReleaseTasks();
    void setHasError(bool hasError);

    QList<XcodeRelease> m_releases;
    bool m_hasError = false;
    QString m_xcodeVersion;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<XcodeReleaseService> m_xcodeReleaseService;
};

} // namespace quillbay
