#include "core/views/ProgressPanel.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace quillbay {

QWidget* makeProgressPanel(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* panel = new QWidget(parent);
    panel->setObjectName(objectName);
    auto* layout = new QVBoxLayout(panel);
    layout->addStretch();
    auto* bar = new QProgressBar(panel);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(220);
    auto* label = new QLabel(text, panel);
    label->setObjectName(objectName + QStringLiteral("Label"));
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(bar, 0, Qt::AlignHCenter);
    layout->addWidget(label);
    layout->addStretch();
    return panel;
}

} // namespace quillbay
