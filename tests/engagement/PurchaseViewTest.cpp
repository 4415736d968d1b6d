#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include "engagement/EngagementPromptStore.h"
#include "engagement/PurchaseService.h"
#include "engagement/views/PurchaseView.h"
#include "foundation/Defaults.h"
#include "platform/TipStore.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// Stands in for a store purchase, which cannot run here: it answers with what the test
// scripted, posted like a real store's answers, and records what it was told.
class ScriptedTipStore final : public TipStore
{
public:
    QList<TipProduct> products;
    TipStore::PurchaseOutcome outcome = TipStore::PurchaseOutcome::succeeded;
    bool verifies = true;

    QStringList requestedIDs;
    QStringList purchased;
    QList<quint64> finished;

    void loadProducts(const QStringList& ids) override
    {
        requestedIDs = ids;
        QTimer::singleShot(0, this, [this] { emit productsLoaded(products); });
    }

    void purchase(const QString& productID) override
    {
        purchased << productID;
        QTimer::singleShot(0, this, [this, productID] {
            QList<TipTransaction> transactions;
            if (outcome == PurchaseOutcome::succeeded)
                transactions << TipTransaction {++m_nextID, productID, verifies, verifies ? QString() : u"bad"_s};
            emit purchaseFinished(productID, outcome, transactions);
        });
    }

    void finish(const TipTransaction& transaction) override { finished << transaction.id; }

    // A transaction arriving from outside a purchase.
    void deliver(const QString& productID, bool verified = true)
    {
        emit transactionUpdated(
            TipTransaction {++m_nextID, productID, verified, verified ? QString() : u"signature"_s});
    }

private:
    quint64 m_nextID = 1000;
};

// The three tip products, given out of price order as a store may.
inline QList<TipProduct> tipProducts()
{
    return {
        {u"tidewell.donation.2"_s, u"Pizza"_s, u"$9.99"_s, 9.99},
        {u"tidewell.donation.0"_s, u"Coffee"_s, u"$0.99"_s, 0.99},
        {u"tidewell.donation.1"_s, u"Donut"_s, u"$2.99"_s, 2.99},
    };
}

struct Tips
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"d.ini"_s)};
    EngagementPromptStore engagement {defaults, u"1.0"_s};
    ScriptedTipStore store;
    std::unique_ptr<PurchaseService> service;

    explicit Tips(QList<TipProduct> products = tipProducts())
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

QList<QPushButton*> tipButtons(const PurchaseView& view)
{
    QList<QPushButton*> buttons;
    while (auto* b = view.findChild<QPushButton*>(u"tip%1PushButton"_s.arg(buttons.size())))
        buttons << b;
    return buttons;
}

} // namespace

TEST(PurchaseViewTest, OneButtonPerTipCheapestFirstThanksOnlyForACompletedTip)
{
    // A product that is not one of the three tips never gets a button.
    QList<TipProduct> products = tipProducts();
    products << TipProduct {u"other.product"_s, u"Other"_s, u"$0.10"_s, 0.10};
    Tips w(products);
    PurchaseView view(*w.service, u"12.4 GB"_s, u"Quillbay"_s);
    view.show();
    EXPECT_EQ(view.findChild<QLabel*>(u"savedSpaceLabel"_s)->text(), u"You've saved a total of <b>12.4 GB</b>"_s);
    ASSERT_TRUE(test::waitUntil([&] { return !tipButtons(view).isEmpty(); }, 3000));
    QStringList texts;
    for (QPushButton* b : tipButtons(view))
        texts << b->text();
    EXPECT_EQ(texts, (QStringList {u"☕️ $0.99"_s, u"🍩 $2.99"_s, u"🍕 $9.99"_s}));
    EXPECT_EQ(w.store.requestedIDs, PurchaseService::tipProductIDs());

    w.store.outcome = TipStore::PurchaseOutcome::cancelled;
    QSignalSpy finished(&w.store, &TipStore::purchaseFinished);
    QSignalSpy completed(w.service.get(), &PurchaseService::consumablePurchaseCompleted);
    tipButtons(view).at(0)->click();
    ASSERT_TRUE(finished.wait(3000));
    EXPECT_TRUE(view.isVisible());
    EXPECT_TRUE(view.toastMessage().isEmpty());
    EXPECT_FALSE(w.engagement.hasEverTipped());
    EXPECT_EQ(completed.count(), 0);

    w.store.outcome = TipStore::PurchaseOutcome::succeeded;
    tipButtons(view).at(2)->click();
    ASSERT_TRUE(finished.wait(3000));
    EXPECT_EQ(w.store.purchased, (QStringList {u"tidewell.donation.0"_s, u"tidewell.donation.2"_s}));
    EXPECT_EQ(view.toastMessage(), u"Thank you for your kindness!"_s);
    EXPECT_TRUE(view.isVisible()) << "the window stays for the thanks";
    EXPECT_TRUE(w.engagement.hasEverTipped());
    ASSERT_EQ(completed.count(), 1);
    EXPECT_EQ(completed.at(0).at(0).value<TipProduct>().id, u"tidewell.donation.2"_s);
    EXPECT_EQ(w.store.finished.size(), 1);
}

TEST(PurchaseServiceTest, FailedAndUnverifiedPurchasesAreNoTips)
{
    for (const bool verifies : {false, true}) {
        SCOPED_TRACE(verifies ? "failed" : "unverified");
        Tips f;
        ASSERT_TRUE(f.loaded());
        f.store.outcome = verifies ? TipStore::PurchaseOutcome::failed : TipStore::PurchaseOutcome::succeeded;
        f.store.verifies = verifies;
        QSignalSpy completed(f.service.get(), &PurchaseService::consumablePurchaseCompleted);
        QSignalSpy finishedSpy(&f.store, &TipStore::purchaseFinished);
        f.service->purchase(f.service->consumable().at(1));
        ASSERT_TRUE(finishedSpy.wait(3000));
        EXPECT_EQ(f.store.purchased, QStringList {u"tidewell.donation.1"_s});
        EXPECT_FALSE(f.engagement.hasEverTipped());
        EXPECT_EQ(completed.count(), 0);
        EXPECT_TRUE(f.store.finished.isEmpty()) << "an unverified transaction is left to the store";
    }
}

TEST(PurchaseServiceTest, DeliveredTransactions)
{
    {
        // Delivered before the product list arrived: recorded and finished, no completion.
        Tips early;
        QSignalSpy completed(early.service.get(), &PurchaseService::consumablePurchaseCompleted);
        early.store.deliver(u"tidewell.donation.0"_s);
        EXPECT_TRUE(early.engagement.hasEverTipped());
        EXPECT_EQ(early.store.finished.size(), 1);
        EXPECT_EQ(completed.count(), 0);
    }
    Tips f;
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
