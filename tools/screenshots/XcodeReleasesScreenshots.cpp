#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPromise>
#include <QTemporaryDir>
#include <QToolButton>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TestEnvironment.h"
#include "tools/screenshots/Screenshots.h"
#include "xcode_releases/XcodeReleaseService.h"
#include "xcode_releases/views/XcodeReleasesView.h"

namespace quillbay::screenshots {

namespace {

// A few releases of every maturity, used when the published feed is not beside the
// checkout.
const QByteArray kFallbackFeed = R"j([
 {"name": "Xcode (Apple Silicon)", "requires": "15.6", "date": {"day": 12, "month": 12, "year": 2025},
  "compilers": {"swift": [{"build": "6.2.3.3.21", "number": "6.2.3"}]},
  "sdks": {"macOS": [{"build": "25C57", "number": "26.2"}], "iOS": [{"build": "23C53", "number": "26.2"}],
           "visionOS": [{"build": "23N301", "number": "26.2"}]},
  "links": {"download": {"architectures": ["arm64"], "url": "https://download.example.test/Xcode_26.2.xip"},
            "notes": {"url": "https://notes.example.test/26.2"}},
  "version": {"build": "17C52", "number": "26.2", "release": {"release": true}}},
 {"name": "Xcode", "requires": "15.6", "date": {"day": 3, "month": 12, "year": 2025},
  "sdks": {"macOS": [{"build": "25C54", "number": "26.2"}], "iOS": [{"build": "23C50", "number": "26.2"}]},
  "version": {"build": "17C48", "number": "26.2", "release": {"rc": 1}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 5, "month": 3, "year": 2025},
  "compilers": {"swift": [{"build": "6.1.0.110.21", "number": "6.1"}]},
  "sdks": {"macOS": [{"build": "24E241", "number": "15.4"}], "iOS": [{"build": "22E235", "number": "18.4"}]},
  "links": {"download": {"url": "https://download.example.test/Xcode_16.3.xip"}},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}}
])j";

QByteArray fixtureFeed()
{
    const QString shared = test::sharedDataDir();
    QFile file(shared + QStringLiteral("/xcodereleases/data.json"));
    if (!shared.isEmpty() && file.open(QIODevice::ReadOnly))
        return file.readAll();
    return kFallbackFeed;
}

// A transport that answers at once with a fixed status and body.
XcodeReleaseDataLoader fixedAnswer(int status, QByteArray body)
{
    return [status, body](const QUrl&) {
        QPromise<XcodeReleaseLoadResult> promise;
        promise.start();
        promise.addResult(XcodeReleaseLoadResult {XcodeReleaseResponse {body, status}, {}});
        promise.finish();
        return promise.future();
    };
}

struct ScreenState
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    SerialExecutor<CacheManager> cache {std::make_unique<CacheManager>(dir.filePath(QStringLiteral("cache.json")))};
    AppViewModel model {defaults, saved};

    ScreenState(int status, const QByteArray& body)
    {
        model.replaceXcodeReleaseService(std::make_unique<XcodeReleaseService>(
            QUrl(QStringLiteral("https://feed.example.test/data.json")), cache, fixedAnswer(status, body)));
        // Nothing opens from a screenshot.
        auto workspace = std::make_unique<test::RecordingWorkspace>();
        workspace->opensUrls = false;
        workspace->reveals = false;
        model.replaceWorkspace(std::move(workspace));
    }

    bool settle()
    {
        return test::waitUntil([this] { return !model.releases().isEmpty() || model.hasError(); });
    }
};

void show(QWidget& view)
{
    view.resize(1180, 640);
    view.show();
}

} // namespace

void renderXcodeReleasesScreenshots(const QString& outDir)
{
    {
        ScreenState state(200, fixtureFeed());
        XcodeReleasesView view(state.model);
        state.settle();
        show(view);
        save(&view, outDir, QStringLiteral("xcode-releases-table"));
    }
    {
        ScreenState state(200, fixtureFeed());
        state.model.setOnlyRelease(false);
        for (int i = 0; i < AppViewModel::releaseColumnCount; ++i)
            state.model.setReleaseColumnVisible(static_cast<AppViewModel::ReleaseColumn>(i), true);
        XcodeReleasesView view(state.model);
        state.settle();
        view.findChild<QToolButton*>(QStringLiteral("moreInformationToolButton"))->click();
        show(view);
        save(&view, outDir, QStringLiteral("xcode-releases-table-expanded"));
    }
    {
        ScreenState state(500, {});
        XcodeReleasesView view(state.model);
        state.settle();
        show(view);
        save(&view, outDir, QStringLiteral("xcode-releases-failure"));
    }
}

} // namespace quillbay::screenshots
