#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "engagement/EngagementPromptPresenter.h"
#include "engagement/EngagementPromptStore.h"
#include "foundation/Defaults.h"
#include "testsupport/TestEnvironment.h"

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

struct Presented
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"d.ini"_s)};
    // A short delay keeps the test quick; the rules do not depend on its length.
    EngagementPromptStore store {defaults, u"1.0"_s, EngagementPromptStore::defaultAutomaticTipCooldown, 0.2};
    QDateTime clock = QDateTime(QDate(2025, 6, 1), QTime(9, 0), Qt::UTC);
    bool active = true;
    int reviews = 0;
    EngagementPromptPresenter presenter {store,
                                         {[this] { return clock; }, [this] { return active; }, [this] { ++reviews; }}};
};

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
    // A tip clears a waiting tip offer: no window opens and no offer date is written.
    store.recordTip();
    EXPECT_TRUE(store.hasEverTipped());
    EXPECT_EQ(store.consumeDuePrompt(kT0.addSecs(200)), std::nullopt);
    EXPECT_FALSE(d.open()->contains(u"engagementPrompt.lastAutoTipPromptDate"_s));

    // The next version asks for the review again (its mark was never set), and a tip given
    // meanwhile does not take a waiting review away.
    EngagementPromptStore next(*defaults, u"5.1"_s);
    EXPECT_EQ(next.successfulActionCount(), 0);
    next.recordSuccessfulAction(kT0.addSecs(300));
    next.recordTip();
    EXPECT_EQ(next.consumeDuePrompt(kT0.addSecs(303)), PromptKind::review);
    EXPECT_TRUE(next.hasEverTipped()) << "tipping stays across versions";
    EXPECT_EQ(d.open()->value(u"engagementPrompt.version"_s).toString(), u"5.1"_s);

    // A stored count below zero reads as 0; a run without a usable version counts nothing
    // and writes nothing.
    defaults->setValue(u"engagementPrompt.successfulActionCount"_s, qint64(-3));
    defaults->sync();
    EXPECT_EQ(EngagementPromptStore(*defaults, u"5.1"_s).successfulActionCount(), 0);
    EngagementPromptStore versionless(*defaults, u"--"_s);
    versionless.recordSuccessfulAction(kT0);
    EXPECT_EQ(versionless.successfulActionCount(), 0);
    EXPECT_FALSE(versionless.pendingPrompt().has_value());
    auto reread = d.open();
    EXPECT_EQ(reread->value(u"engagementPrompt.version"_s).toString(), u"5.1"_s);
    EXPECT_EQ(reread->value(u"engagementPrompt.successfulActionCount"_s).toString(), u"-3"_s);
}

TEST(EngagementPromptPresenterTest, PresentsTheReviewWhenDueAndActiveAndTheTipAsTheWindow)
{
    Presented f;
    QSignalSpy purchaseView(&f.store, &EngagementPromptStore::isPresentingPurchaseViewChanged);
    f.store.recordSuccessfulAction(f.clock);
    f.presenter.present(); // active, but the prompt is not due yet by the clock
    EXPECT_EQ(f.reviews, 0);
    f.active = false;
    f.clock = f.clock.addSecs(3600); // long past notBefore, but in the background
    EXPECT_FALSE(test::waitUntil([&] { return f.reviews > 0; }, 500));
    ASSERT_TRUE(f.store.pendingPrompt().has_value()) << "still waiting";
    f.active = true;
    f.presenter.present(); // what becoming active runs
    EXPECT_EQ(f.reviews, 1);
    EXPECT_FALSE(f.store.pendingPrompt().has_value());
    EXPECT_EQ(purchaseView.count(), 0);

    // The tip offer comes by its timer, as the window.
    f.store.recordSuccessfulAction(f.clock);
    f.clock = f.clock.addMSecs(200); // the injected clock says it is due when the timer fires
    ASSERT_TRUE(purchaseView.wait(3000));
    EXPECT_TRUE(f.store.isPresentingPurchaseView());
    EXPECT_EQ(f.reviews, 1);
}
