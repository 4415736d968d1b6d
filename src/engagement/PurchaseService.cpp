#include "engagement/PurchaseService.h"

#include <algorithm>

#include "engagement/EngagementPromptStore.h"
#include "foundation/Log.h"

namespace quillbay {

const QStringList& PurchaseService::tipProductIDs()
{
    static const QStringList ids {QStringLiteral("tidewell.donation.0"), QStringLiteral("tidewell.donation.1"),
                                  QStringLiteral("tidewell.donation.2")};
    return ids;
}

PurchaseService::PurchaseService(TipStore& store, EngagementPromptStore& engagementPromptStore, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_engagementPromptStore(engagementPromptStore)
{
    // The update listener is registered before anything is asked, so no delivery is missed.
    connect(&m_store, &TipStore::transactionUpdated, this, &PurchaseService::handle);
    connect(&m_store, &TipStore::productsLoaded, this, [this](const QList<TipProduct>& products) {
        QList<TipProduct> tips;
        for (const TipProduct& product : products) {
            if (tipProductIDs().contains(product.id))
                tips << product;
        }
        std::stable_sort(tips.begin(), tips.end(),
                         [](const TipProduct& a, const TipProduct& b) { return a.price < b.price; });
        m_consumable = tips;
        emit consumableChanged();
    });
    connect(&m_store, &TipStore::purchaseFinished, this,
            [this](const QString&, TipStore::PurchaseOutcome outcome, const QList<TipTransaction>& transactions) {
                if (outcome != TipStore::PurchaseOutcome::succeeded)
                    return;
                for (const TipTransaction& transaction : transactions)
                    handle(transaction);
            });
    m_store.loadProducts(tipProductIDs());
}

void PurchaseService::purchase(const TipProduct& product)
{
    m_store.purchase(product.id);
}

void PurchaseService::handle(const TipTransaction& transaction)
{
    if (!transaction.isVerified) {
        // Left unfinished: the store delivers it again once it can be verified.
        qCCritical(logApp).noquote() << StoreError::message() << privateText(transaction.verificationFailure);
        return;
    }
    if (tipProductIDs().contains(transaction.productID))
        m_engagementPromptStore.recordTip();
    const auto product = std::find_if(m_consumable.cbegin(), m_consumable.cend(),
                                      [&](const TipProduct& p) { return p.id == transaction.productID; });
    if (product != m_consumable.cend())
        emit consumablePurchaseCompleted(*product);
    m_store.finish(transaction);
}

} // namespace quillbay
