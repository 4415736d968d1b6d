#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

// A page with nothing to list: a symbol, a title, a description and one button.
class HomebrewCacheUnavailablePanel : public QWidget
{
    Q_OBJECT

public:
    HomebrewCacheUnavailablePanel(const QString& systemImage,
                                  const QString& title,
                                  const QString& buttonTitle,
                                  QWidget* parent = nullptr);

    void setDescription(const QString& text);
    QPushButton* button() const { return m_button; }
    QLabel* titleLabel() const { return m_title; }

private:
    QLabel* m_title;
    QLabel* m_description;
    QPushButton* m_button;
};

} // namespace quillbay
