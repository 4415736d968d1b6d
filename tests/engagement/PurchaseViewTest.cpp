#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "ScriptedTipStore.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/PurchaseService.h"
#include "engagement/views/PurchaseView.h"
#include "foundation/Defaults.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

struct Window
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"d.ini"_s)};
    EngagementPromptStore engagement {defaults, u"1.0"_s};
    test::ScriptedTipStore store;
    std::unique_ptr<PurchaseService> service;
    std::unique_ptr<PurchaseView> view;

    explicit Window(QList<TipProduct> products)
    {
        store.products = std::move(products);
        service = std::make_unique<PurchaseService>(store, engagement);
        view = std::make_unique<PurchaseView>(*service, u"12.4 GB"_s, u"Quillbay"_s);
        view->show();
    }

    QList<QPushButton*> tipButtons() const
    {
        QList<QPushButton*> buttons;
        for (int i = 0;; ++i) {
            auto* b = view->findChild<QPushButton*>(u"tip%1PushButton"_s.arg(i));
            if (!b)
                return buttons;
            buttons << b;
        }
    }
    QString label(const char* name) const { return view->findChild<QLabel*>(QLatin1String(name))->text(); }
};

} // namespace

TEST(PurchaseViewTest, OneButtonPerTipCheapestFirstThanksOnlyForACompletedTip)
{
    // A product that is not one of the three tips never gets a button.
    QList<TipProduct> products = test::tipProducts();
    products << TipProduct {u"other.product"_s, u"Other"_s, u"$0.10"_s, 0.10};
    Window w(products);
    EXPECT_EQ(w.label("savedSpaceLabel"), u"You've saved a total of <b>12.4 GB</b>"_s);
    ASSERT_TRUE(test::waitUntil([&] { return !w.tipButtons().isEmpty(); }, 3000));
    QStringList texts;
    for (QPushButton* b : w.tipButtons())
        texts << b->text();
    EXPECT_EQ(texts, (QStringList {u"☕️ $0.99"_s, u"🍩 $2.99"_s, u"🍕 $9.99"_s}));
    EXPECT_EQ(w.store.requestedIDs, PurchaseService::tipProductIDs());

    w.store.outcome = TipStore::PurchaseOutcome::cancelled;
    QSignalSpy finished(&w.store, &TipStore::purchaseFinished);
    w.tipButtons().at(0)->click();
    ASSERT_TRUE(finished.wait(3000));
    EXPECT_TRUE(w.view->isVisible());
    EXPECT_TRUE(w.view->toastMessage().isEmpty());
    EXPECT_FALSE(w.engagement.hasEverTipped());

    w.store.outcome = TipStore::PurchaseOutcome::succeeded;
    w.tipButtons().at(2)->click();
    ASSERT_TRUE(finished.wait(3000));
    EXPECT_EQ(w.store.purchased, (QStringList {u"tidewell.donation.0"_s, u"tidewell.donation.2"_s}));
    EXPECT_EQ(w.view->toastMessage(), u"Thank you for your kindness!"_s);
    EXPECT_TRUE(w.view->isVisible()) << "the window stays for the thanks";
    EXPECT_TRUE(w.engagement.hasEverTipped());
}
