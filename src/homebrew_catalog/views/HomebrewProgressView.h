#pragma once

#include <QWidget>

namespace quillbay {

// A busy indicator with one line of text under it, centred in its space.
class HomebrewProgressView final : public QWidget
{
    Q_OBJECT

public:
    explicit HomebrewProgressView(const QString& text, QWidget* parent = nullptr);

    const QString& text() const { return m_text; }

private:
    QString m_text;
};

} // namespace quillbay
