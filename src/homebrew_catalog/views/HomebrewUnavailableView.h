#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

// Content that is not there: a symbol, a title, a description and, when given a title,
// one button ("Try Again").
class HomebrewUnavailableView final : public QWidget
{
    Q_OBJECT

public:
    HomebrewUnavailableView(const QString& systemImage,
                            const QString& title,
                            const QString& description,
                            const QString& buttonTitle = {},
                            QWidget* parent = nullptr);

    void setDescription(const QString& text);
    QString title() const;
    QString description() const;
    QPushButton* button() const { return m_button; }

private:
    QLabel* m_title;
    QLabel* m_description;
    QPushButton* m_button = nullptr;
};

} // namespace quillbay
