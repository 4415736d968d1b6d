#pragma once

#include <QByteArray>
#include <QFrame>
#include <QPixmap>

class QLabel;
class QMimeData;

namespace quillbay {

// The drop target of the app icon tab: an image file or image data dropped on it, or a
// file picked with its button. Shows the two placeholder lines until it has an image,
// then the image fitted inside. It only reads what was dropped; the owner decides what
// to keep (imageDropped) and what to say about a drop it couldn't read (dropFailed).
class ImageDropArea : public QFrame
{
    Q_OBJECT

public:
    explicit ImageDropArea(QWidget* parent = nullptr);

    // Shows these bytes as the image; empty shows the placeholder.
    void setImageData(const QByteArray& bytes);
    bool hasImage() const { return !m_image.isNull(); }

    // Reads the first item of a drop: a file's bytes, or image data encoded as PNG.
    void acceptMimeData(const QMimeData* mime);
    // Opens the file chooser (window-modal); the chosen file is read like a dropped one.
    void chooseFile();

signals:
    void imageDropped(const QByteArray& data);
    void dropFailed(const QString& description);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void readFile(const QString& path);
    static bool canTake(const QMimeData* mime);

    QLabel* m_placeholder;
    QLabel* m_hint;
    QByteArray m_data;
    QPixmap m_image;
};

} // namespace quillbay
