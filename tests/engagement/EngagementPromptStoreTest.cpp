#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "engagement/EngagementPromptStore.h"
#include "foundation/Defaults.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

const QDateTime kT0 = QDateTime(QDate(2025, 3, 1), QTime(12, 0), Qt::UTC);
constexpr qint64 kDay = 24 * 3600;

struct DefaultsFile
{
    QTemporaryDir dir;
    QString path() const { return dir.filePath(u"defaults.ini"_s); }
    // A fresh handle each time, so every check reads what was written to the file.
    std::unique_ptr<SettingsDefaults> open() const { return std::make_unique<SettingsDefaults>(path()); }
};

// Runs one success and hands out whatever is due three seconds later.
std::optional<PromptKind> succeedAndConsume(EngagementPromptStore& store, const QDateTime& at)
{
    store.recordSuccessfulAction(at);
    return store.consumeDuePrompt(at.addSecs(3));
}

} // namespace

TEST(EngagementPromptStoreTest, AFirstRunAsksForAReviewThenOffersATip)
{
    DefaultsFile d;
    auto defaults = d.open();
    EngagementPromptStore store(*defaults, u"1.2.0"_s);
    store.recordSuccessfulAction(kT0);
    ASSERT_TRUE(store.pendingPrompt().has_value());
    EXPECT_EQ(*store.pendingPrompt(), (PendingPrompt {PromptKind::review, kT0.addSecs(3)}));
    EXPECT_FALSE(defaults->contains(u"LastReviewPromptVersion"_s)) << "the mark waits for the hand-out";
    EXPECT_EQ(store.consumeDuePrompt(kT0.addMSecs(2999)), std::nullopt) << "not before its time";
    EXPECT_EQ(store.consumeDuePrompt(kT0.addSecs(3)), PromptKind::review);
    EXPECT_FALSE(store.pendingPrompt().has_value());
    EXPECT_EQ(defaults->value(u"LastReviewPromptVersion"_s).toString(), u"1.2.0"_s);

    const QDateTime second = kT0.addSecs(60);
    EXPECT_EQ(succeedAndConsume(store, second), PromptKind::tip);
    auto reread = d.open();
    EXPECT_EQ(reread->value(u"engagementPrompt.lastAutoTipPromptVersion"_s).toString(), u"1.2.0"_s);
    EXPECT_EQ(reread->value(u"engagementPrompt.lastAutoTipPromptDate"_s).toDateTime(), second.addSecs(3));
    EXPECT_EQ(reread->integerValue(u"engagementPrompt.successfulActionCount"_s, -1), 2);
    store.recordSuccessfulAction(second.addSecs(100));
    EXPECT_FALSE(store.pendingPrompt().has_value()) << "later successes of the version prompt for nothing";
}

TEST(EngagementPromptStoreTest, SecondSuccessRules)
{
    const QString review = u"LastReviewPromptVersion"_s;
    const QString tipVersion = u"engagementPrompt.lastAutoTipPromptVersion"_s;
    const QString tipDate = u"engagementPrompt.lastAutoTipPromptDate"_s;
    struct Case
    {
        const char* name;
        QList<std::pair<QString, QVariant>> before; // what an earlier run left
        bool consumeFirst; // the review was handed out before success 2
        std::optional<PromptKind> first;
        std::optional<PromptKind> second;
    };
    const Case cases[] = {
        {"review asked already in this version", {{review, u"2.0"_s}}, true, std::nullopt, PromptKind::tip},
        {"a waiting review keeps its place", {}, false, PromptKind::review, PromptKind::review},
        {"tipped once, any version", {{u"engagementPrompt.hasEverTipped"_s, true}}, true, PromptKind::review, {}},
        {"tip offered exactly 45 days before the second success",
         {{tipVersion, u"1.9"_s}, {tipDate, kT0.addSecs(10 - 45 * kDay)}},
         true,
         PromptKind::review,
         PromptKind::tip},
        {"tip offered one second short of 45 days",
         {{tipDate, kT0.addSecs(10 - 45 * kDay + 1)}},
         true,
         PromptKind::review,
         {}},
        {"a date of the wrong type counts as none",
         {{tipDate, u"yesterday"_s}},
         true,
         PromptKind::review,
         PromptKind::tip},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DefaultsFile d;
        auto defaults = d.open();
        for (const auto& [key, value] : c.before)
            defaults->setValue(key, value);
        EngagementPromptStore store(*defaults, u"2.0"_s);
        store.recordSuccessfulAction(kT0);
        EXPECT_EQ(store.pendingPrompt() ? std::optional(store.pendingPrompt()->kind) : std::nullopt, c.first);
        if (c.consumeFirst)
            store.consumeDuePrompt(kT0.addSecs(3));
        store.recordSuccessfulAction(kT0.addSecs(c.consumeFirst ? 10 : 1));
        EXPECT_EQ(store.pendingPrompt() ? std::optional(store.pendingPrompt()->kind) : std::nullopt, c.second);
    }
}

TEST(EngagementPromptStoreTest, TheCountStartsOverWithEachVersionButTippingStays)
{
    struct Case
    {
        const char* name;
        QVariant storedVersion;
        QVariant storedCount;
        QString currentVersion;
        qint64 expectedCount;
        bool resetWritten;
    };
    const Case cases[] = {
        {"same version", u"3.0"_s, qint64(5), u"3.0"_s, 5, false},
        {"negative count reads as 0", u"3.0"_s, qint64(-3), u"3.0"_s, 0, false},
        {"new version", u"2.9"_s, qint64(5), u"3.0"_s, 0, true},
        {"no usable version writes nothing", u"2.9"_s, qint64(5), u"--"_s, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DefaultsFile d;
        auto defaults = d.open();
        defaults->setValue(u"engagementPrompt.version"_s, c.storedVersion);
        defaults->setValue(u"engagementPrompt.successfulActionCount"_s, c.storedCount);
        defaults->setValue(u"engagementPrompt.hasEverTipped"_s, true);
        defaults->sync();
        EngagementPromptStore store(*defaults, c.currentVersion);
        EXPECT_EQ(store.successfulActionCount(), c.expectedCount);
        EXPECT_TRUE(store.hasEverTipped());
        if (c.currentVersion == u"--"_s) {
            store.recordSuccessfulAction(kT0);
            EXPECT_EQ(store.successfulActionCount(), 0) << "a versionless run does not count";
            EXPECT_FALSE(store.pendingPrompt().has_value());
        }
        auto reread = d.open();
        if (c.resetWritten) {
            EXPECT_EQ(reread->value(u"engagementPrompt.version"_s).toString(), c.currentVersion);
            EXPECT_EQ(reread->integerValue(u"engagementPrompt.successfulActionCount"_s, -1), 0);
        } else {
            EXPECT_EQ(reread->value(u"engagementPrompt.version"_s), c.storedVersion);
            EXPECT_EQ(reread->value(u"engagementPrompt.successfulActionCount"_s).toString(), c.storedCount.toString());
        }
    }
}

TEST(EngagementPromptStoreTest, ATipClearsAWaitingTipOfferButNotAReview)
{
    DefaultsFile d;
    auto defaults = d.open();
    EngagementPromptStore store(*defaults, u"4.0"_s);
    store.recordSuccessfulAction(kT0);
    store.recordTip();
    EXPECT_TRUE(store.hasEverTipped());
    ASSERT_TRUE(store.pendingPrompt().has_value()) << "a waiting review stays";
    EXPECT_EQ(store.pendingPrompt()->kind, PromptKind::review);
    EXPECT_TRUE(d.open()->boolValue(u"engagementPrompt.hasEverTipped"_s, false));

    DefaultsFile d2;
    auto defaults2 = d2.open();
    EngagementPromptStore tipping(*defaults2, u"4.0"_s);
    EXPECT_EQ(succeedAndConsume(tipping, kT0), PromptKind::review);
    tipping.recordSuccessfulAction(kT0.addSecs(30));
    ASSERT_TRUE(tipping.pendingPrompt().has_value());
    tipping.recordTip();
    EXPECT_FALSE(tipping.pendingPrompt().has_value());
    EXPECT_EQ(tipping.consumeDuePrompt(kT0.addSecs(60)), std::nullopt) << "no window opens";
    EXPECT_FALSE(d2.open()->contains(u"engagementPrompt.lastAutoTipPromptDate"_s));
}

TEST(EngagementPromptStoreTest, APromptLostWithTheProcessComesAgain)
{
    DefaultsFile d;
    {
        auto defaults = d.open();
        EngagementPromptStore store(*defaults, u"5.0"_s);
        store.recordSuccessfulAction(kT0);
        ASSERT_TRUE(store.pendingPrompt().has_value());
        // The process ends before the review was handed out.
    }
    auto defaults = d.open();
    EngagementPromptStore store(*defaults, u"5.0"_s);
    EXPECT_EQ(store.successfulActionCount(), 1);
    // Count 2 of this version: the review never went out, but only the first success asks for it.
    store.recordSuccessfulAction(kT0.addSecs(100));
    ASSERT_TRUE(store.pendingPrompt().has_value());
    EXPECT_EQ(store.pendingPrompt()->kind, PromptKind::tip);
    EXPECT_FALSE(defaults->contains(u"LastReviewPromptVersion"_s));

    // The next version asks for the review again: its mark was never set.
    EngagementPromptStore next(*defaults, u"5.1"_s);
    EXPECT_EQ(next.successfulActionCount(), 0);
    EXPECT_EQ(succeedAndConsume(next, kT0.addSecs(200)), PromptKind::review);
}
