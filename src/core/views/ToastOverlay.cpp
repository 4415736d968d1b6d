#include "core/views/ToastOverlay.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

#include "core/views/SymbolIcons.h"

namespace quillbay {

ToastOverlay::ToastOverlay(QWidget* parent)
    : QWidget(parent)
    , m_icon(new QLabel(this))
    , m_label(new QLabel(this))
{
    setObjectName(QStringLiteral("toastOverlay"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 8, 16, 8);
    layout->setSpacing(8);
    m_icon->setPixmap(symbolIcon(QStringLiteral("info.circle")).pixmap(16, 16));
    m_label->setObjectName(QStringLiteral("toastLabel"));
    layout->addWidget(m_icon);
    layout->addWidget(m_label);
    // A coarse timer may fire 5% early; each message is promised its full three seconds.
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    m_timer.setInterval(displayMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        hide();
        emit dismissed();
    });
    parent->installEventFilter(this);
    hide();
}

void ToastOverlay::showMessage(const QString& text)
{
    m_label->setText(text);
    adjustSize();
    reposition();
    show();
    raise();
    m_timer.start();
}

void ToastOverlay::dismiss()
{
    m_timer.stop();
    hide();
}

QString ToastOverlay::text() const
{
    return isVisible() ? m_label->text() : QString();
}

bool ToastOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        reposition();
    return QWidget::eventFilter(watched, event);
}

void ToastOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath capsule;
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    capsule.addRoundedRect(box, box.height() / 2, box.height() / 2);
    QColor fill = palette().color(QPalette::ToolTipBase);
    fill.setAlpha(240);
    painter.fillPath(capsule, fill);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawPath(capsule);
}

void ToastOverlay::reposition()
{
    if (!parentWidget())
        return;
    const QSize hint = sizeHint();
    const QRect area = parentWidget()->rect();
    setGeometry(area.center().x() - hint.width() / 2, area.bottom() - hint.height() - 24, hint.width(), hint.height());
}

} // namespace quillbay
