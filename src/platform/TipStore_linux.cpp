#include <QTimer>

#include "platform/TipStore.h"

namespace quillbay {

namespace {

// No store sells anything here: no products, and any purchase fails. Answers are posted
// rather than emitted inside the call, as a real store's would be.
class NoTipStore final : public TipStore
{
public:
    void loadProducts(const QStringList&) override
    {
        QTimer::singleShot(0, this, [this] { emit productsLoaded({}); });
    }

    void purchase(const QString& productID) override
    {
        QTimer::singleShot(0, this,
                           [this, productID] { emit purchaseFinished(productID, PurchaseOutcome::failed, {}); });
    }

    void finish(const TipTransaction&) override { }
};

} // namespace

std::unique_ptr<TipStore> TipStore::createSystem()
{
    return std::make_unique<NoTipStore>();
}

} // namespace quillbay
