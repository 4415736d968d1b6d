#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "ScriptedTipStore.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/PurchaseService.h"
#include "foundation/Defaults.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"d.ini"_s)};
    EngagementPromptStore engagement {defaults, u"1.0"_s};
    test::ScriptedTipStore store;
    std::unique_ptr<PurchaseService> service;

    explicit Fixture(QList<TipProduct> products = test::tipProducts())
    {
        store.products = std::move(products);
        service = std::make_unique<PurchaseService>(store, engagement);
    }

    bool loaded()
    {
        QSignalSpy spy(service.get(), &PurchaseService::consumableChanged);
        return spy.wait(3000);
    }
};

} // namespace

TEST(PurchaseServiceTest, EachPurchaseOutcome)
{
    struct Case
    {
        const char* name;
        TipStore::PurchaseOutcome outcome;
        bool verifies;
        bool tipped;
        bool completed;
        bool finished;
    };
    const Case cases[] = {
        {"success", TipStore::PurchaseOutcome::succeeded, true, true, true, true},
        {"unverified: nothing finished", TipStore::PurchaseOutcome::succeeded, false, false, false, false},
        {"cancelled", TipStore::PurchaseOutcome::cancelled, true, false, false, false},
        {"failed", TipStore::PurchaseOutcome::failed, true, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Fixture f;
        ASSERT_TRUE(f.loaded());
        f.store.outcome = c.outcome;
        f.store.verifies = c.verifies;
        QSignalSpy completed(f.service.get(), &PurchaseService::consumablePurchaseCompleted);
        QSignalSpy finishedSpy(&f.store, &TipStore::purchaseFinished);
        f.service->purchase(f.service->consumable().at(1));
        ASSERT_TRUE(finishedSpy.wait(3000));
        EXPECT_EQ(f.store.purchased, QStringList {u"tidewell.donation.1"_s});
        EXPECT_EQ(f.engagement.hasEverTipped(), c.tipped);
        EXPECT_EQ(completed.count(), c.completed ? 1 : 0);
        if (c.completed) {
            EXPECT_EQ(completed.at(0).at(0).value<TipProduct>().id, u"tidewell.donation.1"_s);
        }
        EXPECT_EQ(f.store.finished.size(), c.finished ? 1 : 0);
    }
}

TEST(PurchaseServiceTest, DeliveredTransactions)
{
    {
        // Delivered before the product list arrived: recorded and finished, no completion.
        Fixture early;
        QSignalSpy completed(early.service.get(), &PurchaseService::consumablePurchaseCompleted);
        early.store.deliver(u"tidewell.donation.0"_s);
        EXPECT_TRUE(early.engagement.hasEverTipped());
        EXPECT_EQ(early.store.finished.size(), 1);
        EXPECT_EQ(completed.count(), 0);
    }
    Fixture f;
    ASSERT_TRUE(f.loaded());
    QSignalSpy completed(f.service.get(), &PurchaseService::consumablePurchaseCompleted);

    // A product outside the three is finished without counting as a tip.
    f.store.deliver(u"tidewell.subscription"_s);
    EXPECT_FALSE(f.engagement.hasEverTipped());
    EXPECT_EQ(f.store.finished.size(), 1);
    EXPECT_EQ(completed.count(), 0);

    // An unverified tip is left to the store.
    f.store.deliver(u"tidewell.donation.2"_s, false);
    EXPECT_FALSE(f.engagement.hasEverTipped());
    EXPECT_EQ(f.store.finished.size(), 1);

    // A tip arriving while no window is open sets the flag all the same.
    f.store.deliver(u"tidewell.donation.2"_s);
    EXPECT_TRUE(f.engagement.hasEverTipped());
    EXPECT_EQ(f.store.finished.size(), 2);
    EXPECT_EQ(completed.count(), 1);
}

TEST(PurchaseServiceTest, WithoutAStoreThereAreNoTips)
{
    QTemporaryDir dir;
    SettingsDefaults defaults(dir.filePath(u"d.ini"_s));
    EngagementPromptStore engagement(defaults, u"1.0"_s);
    const auto store = TipStore::createSystem();
    PurchaseService service(*store, engagement);
    QSignalSpy loaded(&service, &PurchaseService::consumableChanged);
    ASSERT_TRUE(loaded.wait(3000));
    EXPECT_TRUE(service.consumable().isEmpty());
    QSignalSpy purchased(store.get(), &TipStore::purchaseFinished);
    service.purchase(TipProduct {u"tidewell.donation.0"_s, {}, {}, 1});
    ASSERT_TRUE(purchased.wait(3000));
    EXPECT_EQ(purchased.at(0).at(1).value<TipStore::PurchaseOutcome>(), TipStore::PurchaseOutcome::failed);
    EXPECT_FALSE(engagement.hasEverTipped());
}
