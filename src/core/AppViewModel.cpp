#include "core/AppViewModel.h"

#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "platform/Appearance.h"
#include "platform/Workspace.h"
#include "xcode_releases/XcodeReleaseService.h"

namespace quillbay {

namespace {

struct ColumnKey
{
    const char* key;
    bool defaultValue;
};

// Index order is AppViewModel::ReleaseColumn.
constexpr std::array<ColumnKey, AppViewModel::releaseColumnCount> kColumnKeys {{
    {"ReleaseColumnIsVisible", true},
    {"DateColumnIsVisible", false},
    {"RequiredColumnIsVisible", true},
    {"SwiftColumnIsVisible", false},
    {"MacOSColumnIsVisible", true},
    {"IOSColumnIsVisible", true},
    {"WatchOSColumnIsVisible", false},
    {"TvOSColumnIsVisible", false},
    {"VisionOSColumnIsVisible", false},
    {"DownloadColumnIsVisible", true},
    {"ReleaseNotesColumnIsVisible", false},
}};

} // namespace

QString AppViewModel::releaseColumnKey(ReleaseColumn column)
{
    return QLatin1String(kColumnKeys[static_cast<std::size_t>(column)].key);
}

bool AppViewModel::releaseColumnDefault(ReleaseColumn column)
{
    return kColumnKeys[static_cast<std::size_t>(column)].defaultValue;
}

AppViewModel::AppViewModel(Defaults& defaults, SavedSpaceStore& savedSpaceStore, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_savedSpaceStore(savedSpaceStore)
{
    m_onlyRelease = defaults.boolValue(QLatin1String(onlyReleaseKey), true);
    for (std::size_t i = 0; i < kColumnKeys.size(); ++i)
        m_releaseColumns[i] = defaults.boolValue(QLatin1String(kColumnKeys[i].key), kColumnKeys[i].defaultValue);
    // No bookmark is resolved here: a stored one only means authorization is on record.
    m_isDeveloperFolderAuthorized = !defaults.dataValue(QLatin1String(developerFolderBookmarkKey)).isEmpty();
    m_appearanceIndex = defaults.integerValue(QLatin1String(appearanceIndexKey), 0);
    initReleases();
}

AppViewModel::~AppViewModel() = default;

void AppViewModel::setToast(const QString& text)
{
    m_toastMessage = text;
    emit toastMessageChanged();
}

void AppViewModel::clearToast()
{
    if (!m_toastMessage)
        return;
    m_toastMessage.reset();
    emit toastMessageChanged();
}

void AppViewModel::setOnlyRelease(bool value)
{
    m_onlyRelease = value;
    m_defaults.setValue(QLatin1String(onlyReleaseKey), value);
    emit onlyReleaseChanged(value);
}

bool AppViewModel::isReleaseColumnVisible(ReleaseColumn column) const
{
    return m_releaseColumns[static_cast<std::size_t>(column)];
}

void AppViewModel::setReleaseColumnVisible(ReleaseColumn column, bool visible)
{
    m_releaseColumns[static_cast<std::size_t>(column)] = visible;
    m_defaults.setValue(releaseColumnKey(column), visible);
    emit releaseColumnsChanged();
}

void AppViewModel::setAppearanceIndex(qint64 index)
{
    m_appearanceIndex = index;
    m_defaults.setValue(QLatin1String(appearanceIndexKey), index);
    emit appearanceIndexChanged(index);
}

void AppViewModel::applyAppearance(qint64 index)
{
    setApplicationAppearance(index == 0       ? ApplicationAppearance::system
                                 : index == 1 ? ApplicationAppearance::light
                                              : ApplicationAppearance::dark);
}

} // namespace quillbay
