#pragma once

#include <QList>
#include <QStringList>

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

    void loadProducts(const QStringList& ids) override;
    void purchase(const QString& productID) override;
    void finish(const TipTransaction& transaction) override { finished << transaction.id; }

    // A transaction arriving from outside a purchase.
    void deliver(const QString& productID, bool verified = true);

private:
    quint64 m_nextID = 1000;
};

// The three tip products, given out of price order as a store may.
QList<TipProduct> tipProducts();

} // namespace quillbay::test
