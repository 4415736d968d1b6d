#include "assets_maker/views/ImageDropArea.h"

#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>

#include "assets_maker/AssetImageRenderer.h"
#include "assets_maker/AssetMakerError.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

QString imageFileFilter()
{
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        patterns << u"*."_s + QString::fromLatin1(format);
    return u"Images ("_s + patterns.join(u' ') + u")"_s;
}

} // namespace

ImageDropArea::ImageDropArea(QWidget* parent)
    : QFrame(parent)
    , m_placeholder(new QLabel(u"Drag and drop a image file here"_s, this))
    , m_hint(new QLabel(u"1024 x 1024 preferred"_s, this))
{
    setObjectName(u"appIconDropArea"_s);
    setAcceptDrops(true);
    setMinimumSize(220, 220);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setCursor(Qt::PointingHandCursor);
    setToolTip(u"Click to choose an image file"_s);

    m_placeholder->setObjectName(u"dropPlaceholderLabel"_s);
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_hint->setObjectName(u"dropHintLabel"_s);
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setForegroundRole(QPalette::PlaceholderText);
    QFont small = m_hint->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    m_hint->setFont(small);

    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(m_placeholder);
    layout->addWidget(m_hint);
    layout->addStretch();
}

void ImageDropArea::setImageData(const QByteArray& bytes)
{
    if (bytes == m_data && (bytes.isEmpty() || !m_image.isNull()))
        return;
    m_data = bytes;
    QPixmap pixmap;
    if (!bytes.isEmpty())
        pixmap.loadFromData(bytes);
    m_image = pixmap;
    m_placeholder->setVisible(m_image.isNull());
    m_hint->setVisible(m_image.isNull());
    update();
}

bool ImageDropArea::canTake(const QMimeData* mime)
{
    return mime && (mime->hasUrls() || mime->hasImage());
}

void ImageDropArea::acceptMimeData(const QMimeData* mime)
{
    if (!canTake(mime))
        return;
    if (mime->hasUrls()) {
        const QUrl url = mime->urls().constFirst();
        if (!url.isLocalFile()) {
            emit dropFailed(AssetMakerError::corruptFile().localizedDescription());
            return;
        }
        readFile(url.toLocalFile());
        return;
    }
    const QImage image = qvariant_cast<QImage>(mime->imageData());
    try {
        emit imageDropped(AssetImageRenderer::png(image, false));
    } catch (const AssetMakerError&) {
        emit dropFailed(AssetMakerError::corruptFile().localizedDescription());
    }
}

void ImageDropArea::readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        emit dropFailed(file.errorString());
        return;
    }
    emit imageDropped(file.readAll());
}

void ImageDropArea::chooseFile()
{
    auto* dialog = new QFileDialog(window(), u"Choose an Image"_s, QString(), imageFileFilter());
    dialog->setObjectName(u"chooseImageFileDialog"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &ImageDropArea::readFile);
    dialog->open();
}

void ImageDropArea::dragEnterEvent(QDragEnterEvent* event)
{
    if (canTake(event->mimeData()))
        event->acceptProposedAction();
}

void ImageDropArea::dragMoveEvent(QDragMoveEvent* event)
{
    if (canTake(event->mimeData()))
        event->acceptProposedAction();
}

void ImageDropArea::dropEvent(QDropEvent* event)
{
    if (!canTake(event->mimeData()))
        return;
    event->acceptProposedAction();
    acceptMimeData(event->mimeData());
}

void ImageDropArea::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        chooseFile();
    QFrame::mouseReleaseEvent(event);
}

void ImageDropArea::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(4, 4, -4, -4);
    if (m_image.isNull()) {
        QPen pen(palette().color(QPalette::Mid), 2, Qt::DashLine);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box, 10, 10);
        return;
    }
    const QSizeF fitted = QSizeF(m_image.size()).scaled(box.size(), Qt::KeepAspectRatio);
    const QRectF target(box.center() - QPointF(fitted.width() / 2, fitted.height() / 2), fitted);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, m_image, QRectF(m_image.rect()));
}

} // namespace quillbay
