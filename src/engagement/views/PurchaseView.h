#pragma once

#include <QDialog>
#include <QTimer>

#include "engagement/views/SidebarHoverButton.h"

class QLabel;
class QHBoxLayout;

namespace quillbay {

class PurchaseService;
struct TipProduct;

// The tip window: what the tips are for, the saved total, one button per tip product and
// "Not now". A completed tip shows a thank-you toast; a failed or cancelled purchase
// leaves the window as it is.
class PurchaseView : public QDialog
{
    Q_OBJECT

public:
    PurchaseView(PurchaseService& service,
                 QString savedSpace,
                 QString displayName,
                 const SymbolIconProvider& icons = {},
                 QWidget* parent = nullptr);

    // The picture before a product's price, chosen by its identifier.
    static QString pictureFor(const QString& productID);

    QString toastMessage() const;

private:
    void rebuildTipButtons();
    void showToast(const QString& text);

    PurchaseService& m_service;
    QHBoxLayout* m_tipButtons;
    QLabel* m_toast;
    QTimer m_toastTimer;
};

} // namespace quillbay
