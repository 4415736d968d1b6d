#include <QFile>

#include <gtest/gtest.h>

#include "ReleasesFixture.h"
#include "foundation/BuildConfig.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;

TEST(AppViewModelReleasesTest, StartUpReachesEachOfTheFourStates)
{
    const QByteArray kCorrupt = "[{\"name\": \"Xcode\", \"date\": {\"day\"";
    const struct
    {
        const char* what;
        std::optional<QByteArray> cached;
        int status;
        QByteArray body;
        qsizetype releases;
        bool hasError;
        QByteArray cacheAfter; // "<missing>" when no file
        QList<qsizetype> shown; // each change replaces the whole list
    } cases[] = {
        {"no cache, network answers", std::nullopt, 200, otherFeed(), 3, false, otherFeed(), {3}},
        {"cache, network answers 299", smallFeed(), 299, otherFeed(), 3, false, otherFeed(), {2, 3}},
        {"cache, network answers 300", smallFeed(), 300, otherFeed(), 2, true, smallFeed(), {2}},
        {"cache, network sends []", smallFeed(), 200, "[]", 2, true, smallFeed(), {2}},
        {"no cache, network fails", std::nullopt, 404, {}, 0, true, "<missing>", {}},
        {"no cache, truncated feed", std::nullopt, 200, otherFeed().left(120), 0, true, "<missing>", {}},
        {"corrupt cache, network answers", kCorrupt, 200, smallFeed(), 2, false, smallFeed(), {2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Store s(c.cached, c.status, c.body);
        EXPECT_TRUE(s.model->releases().isEmpty());
        EXPECT_FALSE(s.model->hasError());
        LogCapture log(QStringLiteral(QUILLBAY_BUNDLE_IDENTIFIER ".App"));
        QList<qsizetype> shown;
        QObject::connect(s.model.get(), &AppViewModel::releasesChanged, s.model.get(),
                         [&] { shown << s.model->releases().size(); });
        ASSERT_TRUE(waitUntil([&] { return s.server.requestCount() == 1; })) << "the network is asked at every start";
        ASSERT_TRUE(
            waitUntil([&] { return s.model->hasError() == c.hasError && s.model->releases().size() == c.releases; }));
        // Give a late, wrong state the chance to show itself.
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(s.model->releases().size(), c.releases);
        EXPECT_EQ(s.model->hasError(), c.hasError);
        EXPECT_EQ(shown, c.shown) << "the cache shows first, then the network's list";
        QFile cache(s.cachePath);
        EXPECT_EQ(cache.open(QIODevice::ReadOnly) ? cache.readAll() : QByteArray("<missing>"), c.cacheAfter);
        const QStringList lines = log.criticalMessages();
        EXPECT_EQ(lines.size(), c.hasError ? 1 : 0) << lines.join(u'\n').toStdString();
        EXPECT_EQ(lines.value(0).startsWith(QStringLiteral("Failed to fetch data: ")), c.hasError);
    }
}
