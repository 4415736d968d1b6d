#include "assets_maker/views/ImageSetListWidget.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QToolButton>

#include "core/views/SymbolIcons.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

constexpr int kThumbnailSide = 40;

} // namespace

ImageSetListWidget::ImageSetListWidget(QWidget* parent)
    : QListWidget(parent)
    , m_placeholder(new QLabel(u"Drag and drop image files here"_s, viewport()))
{
    setObjectName(u"imageSetListWidget"_s);
    setAccessibleName(u"Images"_s);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setMinimumHeight(200);
    m_placeholder->setObjectName(u"imageSetPlaceholderLabel"_s);
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_placeholder->setForegroundRole(QPalette::PlaceholderText);
    // Drops on the label land on the list.
    m_placeholder->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ImageSetListWidget::setItems(const QList<ImageSetItem>& items)
{
    QList<QUuid> ids;
    ids.reserve(items.size());
    for (const ImageSetItem& item : items)
        ids.append(item.id);
    if (ids == m_shownIds)
        return;
    m_shownIds = ids;
    clear();
    QHash<QUuid, QPixmap> kept;
    for (const ImageSetItem& item : items) {
        kept.insert(item.id, thumbnail(item));
        auto* row = new QListWidgetItem(this);
        row->setData(Qt::UserRole, item.id);
        row->setData(Qt::AccessibleTextRole, item.fileName);
        QWidget* widget = makeRow(item);
        row->setSizeHint(widget->sizeHint());
        setItemWidget(row, widget);
    }
    // Thumbnails of removed rows go; those of rows that stay are not decoded again.
    m_thumbnails = std::move(kept);
    m_placeholder->setVisible(items.isEmpty());
}

QPixmap ImageSetListWidget::thumbnail(const ImageSetItem& item)
{
    if (const auto it = m_thumbnails.constFind(item.id); it != m_thumbnails.cend())
        return *it;
    const QImage image = QImage::fromData(item.imageData);
    if (image.isNull())
        return {};
    return QPixmap::fromImage(
        image.scaled(kThumbnailSide, kThumbnailSide, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

QWidget* ImageSetListWidget::makeRow(const ImageSetItem& item)
{
    auto* widget = new QWidget;
    widget->setObjectName(u"imageSetRow"_s);
    auto* layout = new QHBoxLayout(widget);
    layout->setContentsMargins(8, 4, 8, 4);
    auto* picture = new QLabel(widget);
    picture->setObjectName(u"imageSetThumbnailLabel"_s);
    picture->setFixedSize(kThumbnailSide, kThumbnailSide);
    picture->setAlignment(Qt::AlignCenter);
    picture->setPixmap(thumbnail(item));
    auto* name = new QLabel(item.fileName, widget);
    name->setObjectName(u"imageSetNameLabel"_s);
    name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* remove = new QToolButton(widget);
    remove->setObjectName(u"removeImageSetItemToolButton"_s);
    remove->setIcon(symbolIcon(u"minus.circle"_s));
    remove->setText(u"Remove"_s);
    remove->setToolTip(u"Remove"_s);
    remove->setAutoRaise(true);
    const QUuid id = item.id;
    connect(remove, &QToolButton::clicked, this, [this, id] { emit removeRequested(id); });
    layout->addWidget(picture);
    layout->addWidget(name, 1);
    layout->addWidget(remove);
    return widget;
}

void ImageSetListWidget::acceptMimeData(const QMimeData* mime)
{
    if (mime && mime->hasUrls())
        emit filesDropped(mime->urls());
}

QStringList ImageSetListWidget::mimeTypes() const
{
    return {u"text/uri-list"_s};
}

Qt::DropActions ImageSetListWidget::supportedDropActions() const
{
    return Qt::CopyAction | Qt::LinkAction;
}

void ImageSetListWidget::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void ImageSetListWidget::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void ImageSetListWidget::dropEvent(QDropEvent* event)
{
    if (!event->mimeData()->hasUrls())
        return;
    event->acceptProposedAction();
    acceptMimeData(event->mimeData());
}

void ImageSetListWidget::resizeEvent(QResizeEvent* event)
{
    QListWidget::resizeEvent(event);
    m_placeholder->setGeometry(viewport()->rect());
}

} // namespace quillbay
