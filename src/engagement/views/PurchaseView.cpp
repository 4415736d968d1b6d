#include "engagement/views/PurchaseView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/TitleFont.h"
#include "engagement/PurchaseService.h"

namespace quillbay {

namespace {

constexpr int kToastMilliseconds = 3000;

QLabel* wrappedLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

} // namespace

PurchaseView::PurchaseView(
    PurchaseService& service, QString savedSpace, QString displayName, const SymbolIconProvider& icons, QWidget* parent)
    : QDialog(parent)
    , m_service(service)
    , m_tipButtons(new QHBoxLayout)
    , m_toast(new QLabel(this))
{
    setObjectName(QStringLiteral("purchaseView"));
    setWindowTitle(QStringLiteral("Leave a Tip"));
    setModal(true);
    setMinimumWidth(400);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 20);
    layout->setSpacing(10);

    auto* heart = new QLabel(this);
    heart->setObjectName(QStringLiteral("heartLabel"));
    heart->setAlignment(Qt::AlignHCenter);
    const QIcon heartIcon = icons ? icons(QStringLiteral("heart.circle.fill")) : QIcon();
    if (!heartIcon.isNull())
        heart->setPixmap(heartIcon.pixmap(56, 56));
    else
        heart->setText(QStringLiteral("\u2764\uFE0F"));
    layout->addWidget(heart);

    auto* title = wrappedLabel(QStringLiteral("Support Us with a Tip 😊"), this);
    title->setObjectName(QStringLiteral("titleLabel"));
    setTitleFont(title, TitleSize::panel);
    layout->addWidget(title);

    auto* thanks = wrappedLabel(QStringLiteral("Thanks for using ") + displayName + QLatin1Char('!'), this);
    thanks->setObjectName(QStringLiteral("thanksLabel"));
    layout->addWidget(thanks);

    auto* purpose
        = wrappedLabel(QStringLiteral("Your tip helps us keep this app free and improves it with new features."), this);
    purpose->setObjectName(QStringLiteral("purposeLabel"));
    purpose->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(purpose);

    auto* savedRow = new QHBoxLayout;
    savedRow->addStretch();
    const QIcon leafIcon = icons ? icons(QStringLiteral("leaf.fill")) : QIcon();
    if (!leafIcon.isNull()) {
        auto* leaf = new QLabel(this);
        leaf->setPixmap(leafIcon.pixmap(16, 16));
        savedRow->addWidget(leaf);
    }
    // The saved total is bold, as the two pairs of asterisks of the message mark it.
    auto* saved = new QLabel(
        QStringLiteral("You've saved a total of <b>") + savedSpace.toHtmlEscaped() + QStringLiteral("</b>"), this);
    saved->setObjectName(QStringLiteral("savedSpaceLabel"));
    saved->setTextFormat(Qt::RichText);
    savedRow->addWidget(saved);
    savedRow->addStretch();
    layout->addLayout(savedRow);

    layout->addSpacing(6);
    m_tipButtons->setSpacing(10);
    layout->addLayout(m_tipButtons);

    auto* notNow = new QPushButton(QStringLiteral("Not now"), this);
    notNow->setObjectName(QStringLiteral("notNowPushButton"));
    notNow->setAutoDefault(false);
    connect(notNow, &QPushButton::clicked, this, &QDialog::reject);
    auto* notNowRow = new QHBoxLayout;
    notNowRow->addStretch();
    notNowRow->addWidget(notNow);
    notNowRow->addStretch();
    layout->addLayout(notNowRow);

    m_toast->setObjectName(QStringLiteral("toastLabel"));
    m_toast->setAlignment(Qt::AlignHCenter);
    m_toast->setStyleSheet(QStringLiteral("QLabel { background: palette(tool-tip-base); border-radius: 10px; "
                                          "padding: 4px 12px; }"));
    m_toast->hide();
    layout->addWidget(m_toast, 0, Qt::AlignHCenter);
    m_toastTimer.setSingleShot(true);
    connect(&m_toastTimer, &QTimer::timeout, m_toast, &QWidget::hide);

    connect(&m_service, &PurchaseService::consumableChanged, this, &PurchaseView::rebuildTipButtons);
    connect(&m_service, &PurchaseService::consumablePurchaseCompleted, this,
            [this] { showToast(QStringLiteral("Thank you for your kindness!")); });
    rebuildTipButtons();
}

QString PurchaseView::pictureFor(const QString& productID)
{
    const QStringList& ids = PurchaseService::tipProductIDs();
    if (productID == ids.at(0))
        return QStringLiteral("☕️");
    if (productID == ids.at(1))
        return QStringLiteral("🍩");
    return QStringLiteral("🍕");
}

QString PurchaseView::toastMessage() const
{
    return m_toast->isHidden() ? QString() : m_toast->text();
}

void PurchaseView::rebuildTipButtons()
{
    while (QLayoutItem* item = m_tipButtons->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const QList<TipProduct>& products = m_service.consumable();
    if (products.isEmpty())
        return;
    m_tipButtons->addStretch();
    for (qsizetype i = 0; i < products.size(); ++i) {
        const TipProduct product = products.at(i);
        auto* button = new QPushButton(pictureFor(product.id) + QLatin1Char(' ') + product.displayPrice, this);
        button->setObjectName(QStringLiteral("tip%1PushButton").arg(i));
        button->setToolTip(product.displayName);
        button->setAutoDefault(false);
        button->setMinimumWidth(84);
        connect(button, &QPushButton::clicked, this, [this, product] { m_service.purchase(product); });
        m_tipButtons->addWidget(button);
    }
    m_tipButtons->addStretch();
}

void PurchaseView::showToast(const QString& text)
{
    m_toast->setText(text);
    m_toast->show();
    m_toastTimer.start(kToastMilliseconds);
}

} // namespace quillbay
