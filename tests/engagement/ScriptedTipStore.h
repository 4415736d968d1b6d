#pragma once

#include <QList>
#include <QStringList>
#include <QTimer>

#include "platform/TipStore.h"

namespace quillbay::test {

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
                transactions << TipTransaction {++m_nextID, productID, verifies,
                                                verifies ? QString() : QStringLiteral("bad")};
            emit purchaseFinished(productID, outcome, transactions);
        });
    }

    void finish(const TipTransaction& transaction) override { finished << transaction.id; }

    // A transaction arriving from outside a purchase.
    void deliver(const QString& productID, bool verified = true)
    {
        emit transactionUpdated(
            TipTransaction {++m_nextID, productID, verified, verified ? QString() : QStringLiteral("signature")});
    }

private:
    quint64 m_nextID = 1000;
};

// The three tip products, given out of price order as a store may.
inline QList<TipProduct> tipProducts()
{
    return {
        {QStringLiteral("tidewell.donation.2"), QStringLiteral("Pizza"), QStringLiteral("$9.99"), 9.99},
        {QStringLiteral("tidewell.donation.0"), QStringLiteral("Coffee"), QStringLiteral("$0.99"), 0.99},
        {QStringLiteral("tidewell.donation.1"), QStringLiteral("Donut"), QStringLiteral("$2.99"), 2.99},
    };
}

} // namespace quillbay::test
