#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "platform/TipStore.h"

namespace quillbay {

class EngagementPromptStore;

// The failure of a transaction whose signature the store could not verify.
struct StoreError
{
    QString detail;
    static QString message() { return QStringLiteral("Transaction failed verification."); }
};

// Voluntary tips: consumable products that unlock nothing. Every verified tip, bought
// here or delivered by the store later, tells the engagement store, so the automatic
// tip offer stops. UI thread only.
class PurchaseService : public QObject
{
    Q_OBJECT

public:
    static const QStringList& tipProductIDs();

    PurchaseService(TipStore& store, EngagementPromptStore& engagementPromptStore, QObject* parent = nullptr);

    // The tip products, cheapest first; empty until the store answered, and where no store sells.
    const QList<TipProduct>& consumable() const { return m_consumable; }

    // Buys one tip. A failed, cancelled or pending purchase changes nothing.
    void purchase(const TipProduct& product);

signals:
    void consumableChanged();
    void consumablePurchaseCompleted(const TipProduct& product);

private:
    void handle(const TipTransaction& transaction);

    TipStore& m_store;
    EngagementPromptStore& m_engagementPromptStore;
    QList<TipProduct> m_consumable;
};

} // namespace quillbay
