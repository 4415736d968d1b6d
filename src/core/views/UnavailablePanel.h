#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

// A page with nothing to show: a symbol, a bold title, a dimmed description and, when built
// with a button title, one centred button. Tests find the parts by the names
// "unavailableTitleLabel", "unavailableDescriptionLabel" and "unavailablePushButton"; screens
// rename the panel and its button after what they do.
class UnavailablePanel final : public QWidget
{
    Q_OBJECT

public:
    // An empty button title leaves the panel without a button.
    explicit UnavailablePanel(const QString& buttonTitle = {}, QWidget* parent = nullptr);

    void setContent(const QString& systemImage, const QString& title, const QString& description);
    // For screens whose symbol and title stay and whose description carries the reason.
    void setDescription(const QString& text);

    QString title() const;
    QString description() const;
    // Null without a button.
    QPushButton* button() const { return m_button; }

private:
    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_description;
    QPushButton* m_button = nullptr;
};

} // namespace quillbay
