#pragma once

#include <QObject>
#include <QString>
#include <array>
#include <optional>

namespace quillbay {

class Defaults;
class SavedSpaceStore;

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

signals:
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
};

} // namespace quillbay
