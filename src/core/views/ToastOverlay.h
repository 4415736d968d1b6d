#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

namespace quillbay {

// A capsule over the bottom of its parent with an information symbol and a text. Each
// new message restarts a full three-second count; when it runs out the toast hides and
// dismissed() is emitted so the owner can clear its message.
class ToastOverlay : public QWidget
{
    Q_OBJECT

public:
    static constexpr int displayMilliseconds = 3000;

    explicit ToastOverlay(QWidget* parent);

    void showMessage(const QString& text);
    void dismiss();
    QString text() const;

signals:
    void dismissed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void reposition();

    QLabel* m_icon;
    QLabel* m_label;
    QTimer m_timer;
};

} // namespace quillbay
