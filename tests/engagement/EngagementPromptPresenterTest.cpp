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

struct Fixture
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

TEST(EngagementPromptPresenterTest, PresentsTheReviewWhenDueAndTheTipAsTheWindow)
{
    Fixture f;
    QSignalSpy purchaseView(&f.store, &EngagementPromptStore::isPresentingPurchaseViewChanged);
    f.store.recordSuccessfulAction(f.clock);
    f.clock = f.clock.addMSecs(200); // the injected clock says it is due when the timer fires
    ASSERT_TRUE(test::waitUntil([&] { return f.reviews == 1; }, 3000));
    EXPECT_FALSE(f.store.pendingPrompt().has_value());
    EXPECT_EQ(purchaseView.count(), 0);

    f.store.recordSuccessfulAction(f.clock);
    f.clock = f.clock.addMSecs(200);
    ASSERT_TRUE(purchaseView.wait(3000));
    EXPECT_TRUE(f.store.isPresentingPurchaseView());
    EXPECT_EQ(f.reviews, 1);
}

TEST(EngagementPromptPresenterTest, AnEarlyOrBackgroundPresentKeepsThePromptUntilItIsDueAndActive)
{
    Fixture f;
    f.store.recordSuccessfulAction(f.clock);
    f.presenter.present(); // active, but the prompt is not due yet by the clock
    EXPECT_EQ(f.reviews, 0);
    f.active = false;
    f.clock = f.clock.addSecs(3600); // long past notBefore
    EXPECT_FALSE(test::waitUntil([&] { return f.reviews > 0; }, 500));
    ASSERT_TRUE(f.store.pendingPrompt().has_value()) << "still waiting";

    f.active = true;
    f.presenter.present(); // what becoming active runs
    EXPECT_EQ(f.reviews, 1);
    EXPECT_FALSE(f.store.pendingPrompt().has_value());
}
