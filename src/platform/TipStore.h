#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <memory>

namespace quillbay {

// A tip product as the store describes it. Prices and names are the store's.
struct TipProduct
{
    QString id;
    QString displayName;
    QString displayPrice; // formatted by the store, in the user's currency
    double price = 0; // for ordering only

    friend bool operator==(const TipProduct&, const TipProduct&) = default;
};

// One purchase as the store reports it, with the store's verdict on its signature.
struct TipTransaction
{
    quint64 id = 0;
    QString productID;
    bool isVerified = false;
    QString verificationFailure; // why not, when not verified
};

// The store that sells tips. Where no store exists it has no products and every purchase
// fails, so the tip window shows no buttons. Answers arrive as signals on the UI thread.
class TipStore : public QObject
{
    Q_OBJECT

public:
    enum class PurchaseOutcome { succeeded, cancelled, pending, failed };
    Q_ENUM(PurchaseOutcome)

    using QObject::QObject;

    // Answers with productsLoaded (the known ones among ids, in any order).
    virtual void loadProducts(const QStringList& ids) = 0;
    // Answers with purchaseFinished; a success also delivers its transaction there.
    virtual void purchase(const QString& productID) = 0;
    // Tells the store the transaction is handled; unfinished ones come again.
    virtual void finish(const TipTransaction& transaction) = 0;

    static std::unique_ptr<TipStore> createSystem();

signals:
    void productsLoaded(const QList<TipProduct>& products);
    void purchaseFinished(const QString& productID,
                          TipStore::PurchaseOutcome outcome,
                          const QList<TipTransaction>& transaction); // one on success, else none
    // A transaction the store delivers outside a purchase (another device, a late approval).
    void transactionUpdated(const TipTransaction& transaction);
};

} // namespace quillbay
