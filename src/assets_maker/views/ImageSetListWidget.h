#pragma once

#include <QHash>
#include <QList>
#include <QListWidget>
#include <QPixmap>
#include <QUrl>
#include <QUuid>

#include "assets_maker/ImageSetItem.h"

class QLabel;
class QMimeData;

namespace quillbay {

// The list of the image-set tab: one row per image with its thumbnail, its name and a
// control that removes it. Takes file drops; each dropped URL is handed on, in the order
// of the drop, for the store to accept or refuse. Shows a placeholder while empty.
class ImageSetListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit ImageSetListWidget(QWidget* parent = nullptr);

    // Rebuilds the rows when the items differ from those shown.
    void setItems(const QList<ImageSetItem>& items);
    void acceptMimeData(const QMimeData* mime);

signals:
    void filesDropped(const QList<QUrl>& urls);
    void removeRequested(const QUuid& id);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;

private:
    QWidget* makeRow(const ImageSetItem& item);
    QPixmap thumbnail(const ImageSetItem& item);

    QLabel* m_placeholder;
    QList<QUuid> m_shownIds;
    QHash<QUuid, QPixmap> m_thumbnails;
};

} // namespace quillbay
