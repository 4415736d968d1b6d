#pragma once

#include <QWidget>

namespace quillbay {

// The placeholder of a tool that is not in this version yet.
class ComingSoonPanel : public QWidget
{
    Q_OBJECT

public:
    ComingSoonPanel(const QString& title, const QString& systemImage, QWidget* parent = nullptr);
};

} // namespace quillbay
