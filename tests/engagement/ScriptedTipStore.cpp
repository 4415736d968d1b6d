#include "ScriptedTipStore.h"

#include <QTimer>

namespace quillbay::test {

void ScriptedTipStore::loadProducts(const QStringList& ids)
{
    requestedIDs = ids;
    QTimer::singleShot(0, this, [this] { emit productsLoaded(products); });
}

void ScriptedTipStore::purchase(const QString& productID)
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

void ScriptedTipStore::deliver(const QString& productID, bool verified)
{
    emit transactionUpdated(
        TipTransaction {++m_nextID, productID, verified, verified ? QString() : QStringLiteral("signature")});
}

QList<TipProduct> tipProducts()
{
    return {
        {QStringLiteral("tidewell.donation.2"), QStringLiteral("Pizza"), QStringLiteral("$9.99"), 9.99},
        {QStringLiteral("tidewell.donation.0"), QStringLiteral("Coffee"), QStringLiteral("$0.99"), 0.99},
        {QStringLiteral("tidewell.donation.1"), QStringLiteral("Donut"), QStringLiteral("$2.99"), 2.99},
    };
}

} // namespace quillbay::test
