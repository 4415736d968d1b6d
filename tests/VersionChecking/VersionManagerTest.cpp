#include <QSignalSpy>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "VersionChecking/VersionManager.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

using Fixture = test::UpdateFixture;

const QByteArray kOptional = R"({"update_url":"https://u.test/2.2","force_update":false,"update_available":true})";
const QByteArray kForced = R"({"update_url":"https://u.test/2.2","force_update":true,"update_available":false})";

} // namespace

TEST(VersionManagerTest, AGoodAnswerReplacesTheInfoAndClearsTheError)
{
    Fixture f {u"2.1.0"_s};
    test::LogCapture log(u".VersionChecking"_s);
    QSignalSpy infoChanged(&f.manager, &VersionManager::updateInfoChanged);
    QSignalSpy errorChanged(&f.manager, &VersionManager::lastErrorChanged);

    f.manager.openUpdateURL();
    EXPECT_TRUE(f.opened.isEmpty()) << "no page is known before an answer";
    f.server.answer(200, kOptional);
    ASSERT_TRUE(f.checkAndWait());
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
    f.server.answer(200, kForced);
    ASSERT_TRUE(f.checkAndWait());
    EXPECT_FALSE(f.manager.lastError().has_value());
    EXPECT_EQ(errorChanged.count(), 2);
    EXPECT_EQ(infoChanged.count(), 2);
    EXPECT_TRUE(f.manager.isForceUpdateRequired());
    EXPECT_FALSE(f.manager.isUpdateAvailable()) << "a forced update is not offered as an optional one";
}

TEST(VersionManagerTest, ASecondStartCancelsTheFirstWithoutAnError)
{
    Fixture f;
    test::LogCapture log(u".VersionChecking"_s);
    f.server.answer(200, kOptional);
    QSignalSpy finished(&f.manager, &VersionManager::checkFinished);
    f.manager.startCheck();
    f.manager.startCheck();
    ASSERT_TRUE(finished.wait(10000));
    // Let any stray completion of the first arrive.
    test::waitUntil([] { return false; }, 300);
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(f.manager.lastError().has_value());
    EXPECT_TRUE(f.manager.updateInfo().has_value());
    EXPECT_TRUE(log.messages().isEmpty()) << log.messages().join(u'\n').toStdString();
}
