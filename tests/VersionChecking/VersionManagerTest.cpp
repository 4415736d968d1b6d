#include <QSignalSpy>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "VersionChecking/PlatformUpdateURLOpener.h"
#include "VersionChecking/VersionManager.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;
using Fixture = test::UpdateFixture;

TEST(VersionManagerTest, AnswersFailuresAndARestartedCheck)
{
    Fixture f {u"2.1.0"_s};
    test::LogCapture log(u".VersionChecking"_s);
    QSignalSpy infoChanged(&f.manager, &VersionManager::updateInfoChanged);
    QSignalSpy errorChanged(&f.manager, &VersionManager::lastErrorChanged);

    f.manager.openUpdateURL();
    EXPECT_TRUE(f.opened.isEmpty()) << "no page is known before an answer";
    ASSERT_TRUE(f.answer(false, true, u"https://u.test/2.2"_s));
    f.manager.openUpdateURL();
    EXPECT_EQ(f.opened, QList<QUrl> {QUrl(u"https://u.test/2.2"_s)});
    EXPECT_TRUE(f.manager.isUpdateAvailable());
    EXPECT_FALSE(f.manager.isForceUpdateRequired());
    EXPECT_EQ(infoChanged.count(), 1);
    EXPECT_EQ(QUrlQuery(f.server.received().back().url).queryItemValue(u"current_version"_s), u"2.1.0"_s);

    // The same answer again notifies nobody.
    ASSERT_TRUE(f.checkAndWait());
    EXPECT_EQ(infoChanged.count(), 1);

    // A failure keeps the last answer, sets the error and logs one line.
    f.server.answer(503, "down");
    ASSERT_TRUE(f.checkAndWait());
    ASSERT_TRUE(f.manager.lastError().has_value());
    EXPECT_EQ(failureDescription(*f.manager.lastError()), u"Version check failed with status 503: down"_s);
    EXPECT_TRUE(f.manager.updateInfo().has_value());
    EXPECT_EQ(infoChanged.count(), 1);
    EXPECT_EQ(log.criticalMessages(),
              QStringList {u"Version check failed: Version check failed with status 503: down"_s});

    // A forced update: the flag is on even though the service says none is available.
    ASSERT_TRUE(f.answer(true, false, u"https://u.test/2.2"_s));
    EXPECT_FALSE(f.manager.lastError().has_value());
    EXPECT_EQ(errorChanged.count(), 2);
    EXPECT_EQ(infoChanged.count(), 2);
    EXPECT_TRUE(f.manager.isForceUpdateRequired());
    EXPECT_FALSE(f.manager.isUpdateAvailable()) << "a forced update is not offered as an optional one";

    // A second start cancels the first: one end, no error, nothing logged.
    const qsizetype logged = log.messages().size();
    QSignalSpy finished(&f.manager, &VersionManager::checkFinished);
    f.manager.startCheck();
    f.manager.startCheck();
    ASSERT_TRUE(finished.wait(10000));
    test::waitUntil([] { return false; }, 300); // lets any stray completion of the first arrive
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(f.manager.lastError().has_value());
    EXPECT_EQ(log.messages().size(), logged) << log.messages().join(u'\n').toStdString();
}

TEST(PlatformUpdateURLOpenerTest, StorePagesGoToTheStoreApplicationOthersToTheDefaultHandler)
{
    struct Case
    {
        const char* name;
        QString url;
        bool storeInstalled;
        std::optional<QString> storeError;
        QString expectedRoute; // "store", "default" or "store,default"
        bool expectsLog;
    };
    const Case cases[] = {
        {"web page", u"https://quillbay.example/download"_s, true, std::nullopt, u"default"_s, false},
        {"store page", u"https://apps.apple.com/app/id123"_s, true, std::nullopt, u"store"_s, false},
        {"store page without the store", u"https://apps.apple.com/app/id123"_s, false, std::nullopt, u"default"_s,
         false},
        {"store fails (older host)", u"https://itunes.apple.com/app/id123"_s, true, u"launch refused"_s,
         u"store,default"_s, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::LogCapture log(u".UpdateURLOpener"_s);
        QStringList route;
        QStringList askedFor;
        PlatformUpdateURLOpener opener({
            [&](const QString& identifier) -> std::optional<QString> {
                askedFor << identifier;
                return c.storeInstalled ? std::optional<QString>(u"/Applications/App Store.app"_s) : std::nullopt;
            },
            [&](const QUrl& url, const QString& application) -> std::optional<QString> {
                EXPECT_EQ(url, QUrl(c.url));
                EXPECT_EQ(application, u"/Applications/App Store.app"_s);
                route << u"store"_s;
                return c.storeError;
            },
            [&](const QUrl& url) {
                EXPECT_EQ(url, QUrl(c.url));
                route << u"default"_s;
            },
        });
        opener.open(QUrl(c.url));
        EXPECT_EQ(route.join(u','), c.expectedRoute);
        const bool isStorePage = c.url.contains(u"apps.apple.com"_s) || c.url.contains(u"itunes.apple.com"_s);
        EXPECT_EQ(askedFor, isStorePage ? QStringList {u"com.apple.AppStore"_s} : QStringList {})
            << "only store pages look for the store application";
        if (c.expectsLog)
            EXPECT_EQ(log.criticalMessages(), QStringList {u"Failed to open with App Store app: launch refused"_s});
        else
            EXPECT_TRUE(log.messages().isEmpty());
    }
}
