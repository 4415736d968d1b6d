#include <gtest/gtest.h>

#include "VersionChecking/PlatformUpdateURLOpener.h"
#include "testsupport/LogCapture.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

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
