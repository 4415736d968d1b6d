#include <QFile>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "FeedServer.h"
#include "ReleasesFixture.h"
#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/BuildConfig.h"
#include "foundation/Defaults.h"
#include "testsupport/LogCapture.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseService.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QByteArray kCorrupt = "[{\"name\": \"Xcode\", \"requires\": \"14.5\", \"date\": {\"day\"";

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

QStringList versions(const AppViewModel& model)
{
    QStringList texts;
    for (const XcodeRelease& release : model.releases())
        texts << cellText(release, Column::version, true);
    return texts;
}

} // namespace

TEST(AppViewModelReleasesTest, StartUpReachesEachOfTheFourStates)
{
    struct Case
    {
        const char* what;
        std::optional<QByteArray> cached;
        int status;
        QByteArray body;
        qsizetype releases;
        bool hasError;
        QByteArray cacheAfter; // "<missing>" when no file
    };
    const Case cases[] = {
        {"no cache, network answers", std::nullopt, 200, otherFeed(), 3, false, otherFeed()},
        {"cache, network fails", smallFeed(), 500, otherFeed(), 2, true, smallFeed()},
        {"cache, network sends []", smallFeed(), 200, "[]", 2, true, smallFeed()},
        {"no cache, network fails", std::nullopt, 404, {}, 0, true, "<missing>"},
        {"corrupt cache, network answers", kCorrupt, 200, smallFeed(), 2, false, smallFeed()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Store s(c.cached, c.status, c.body);
        EXPECT_TRUE(s.model->releases().isEmpty());
        EXPECT_FALSE(s.model->hasError());
        LogCapture log(QStringLiteral(QUILLBAY_BUNDLE_IDENTIFIER ".App"));
        ASSERT_TRUE(waitUntil([&] { return s.server.requestCount() == 1; })) << "the network is asked at every start";
        ASSERT_TRUE(
            waitUntil([&] { return s.model->hasError() == c.hasError && s.model->releases().size() == c.releases; }));
        // Give a late, wrong state the chance to show itself.
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(s.model->releases().size(), c.releases);
        EXPECT_EQ(s.model->hasError(), c.hasError);
        EXPECT_EQ(readAll(s.cachePath), c.cacheAfter);
        EXPECT_EQ(log.criticalMessages().size(), c.hasError ? 1 : 0)
            << log.criticalMessages().join(u'\n').toStdString();
        if (c.hasError) {
            EXPECT_TRUE(log.criticalMessages().value(0).startsWith(QStringLiteral("Failed to fetch data: ")));
        }
    }
}

TEST(AppViewModelReleasesTest, CachedListShowsBeforeTheNetworkAnswers)
{
    Store s(smallFeed(), 200, otherFeed());
    QList<qsizetype> sizes;
    QObject::connect(s.model.get(), &AppViewModel::releasesChanged, s.model.get(),
                     [&] { sizes << s.model->releases().size(); });
    ASSERT_TRUE(waitUntil([&] { return sizes.size() == 2; }));
    EXPECT_EQ(sizes, (QList<qsizetype> {2, 3})) << "cache first, then the network's list, each replacing the whole";
    EXPECT_EQ(versions(*s.model),
              (QStringList {QStringLiteral("Xcode 26.0 (17A5241e)"), QStringLiteral("Xcode 16.3 (16E140)"),
                            QStringLiteral("Xcode 16.3 (16E5104o)")}))
        << "feed order, nothing sorted";
}

TEST(AppViewModelReleasesTest, InstalledXcodeVersionComesFromTheBundle)
{
    struct Case
    {
        const char* what;
        QByteArray infoPlist; // empty: no bundle at all
        QString expected;
    };
    const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>";
    const Case cases[] = {
        {"installed", header + "<key>CFBundleShortVersionString</key><string>16.2</string></dict></plist>",
         QStringLiteral("Xcode 16.2")},
        {"version is a number", header + "<key>CFBundleShortVersionString</key><integer>16</integer></dict></plist>",
         QString()},
        {"unreadable plist", "<plist", QString()},
        {"not installed", {}, QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Store s(std::nullopt, 200, smallFeed());
        std::optional<QString> bundle;
        if (!c.infoPlist.isEmpty()) {
            s.tree.writeFile(QStringLiteral("Applications/Xcode.app/Contents/Info.plist"), c.infoPlist);
            bundle = s.tree.path(QStringLiteral("Applications/Xcode.app"));
        }
        auto workspace = std::make_unique<RecordingWorkspace>(bundle);
        RecordingWorkspace* recorder = workspace.get();
        s.model->replaceWorkspace(std::move(workspace));
        ASSERT_TRUE(
            waitUntil([&] { return !recorder->askedIdentifiers.isEmpty() && s.model->releases().size() == 2; }));
        EXPECT_EQ(recorder->askedIdentifiers, QStringList {QStringLiteral("com.apple.dt.Xcode")});
        EXPECT_EQ(s.model->xcodeVersion(), c.expected);
    }
}
