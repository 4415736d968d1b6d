#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

// A page with nothing to list: a symbol, a title, a description and, if given, a button.
class HomebrewInstalledUnavailablePanel : public QWidget
{
    Q_OBJECT

public:
    // An empty button title leaves the panel without a button.
    HomebrewInstalledUnavailablePanel(const QString& buttonTitle, QWidget* parent = nullptr);

    void setContent(const QString& systemImage, const QString& title, const QString& description);
    QLabel* titleLabel() const { return m_title; }
    QLabel* descriptionLabel() const { return m_description; }
    // Null without a button.
    QPushButton* button() const { return m_button; }

private:
    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_description;
    QPushButton* m_button = nullptr;
};

} // namespace quillbay
