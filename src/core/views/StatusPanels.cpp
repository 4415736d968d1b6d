#include "core/views/StatusPanels.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

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

void layOutErrorLine(QWidget* line, QLabel* label)
{
    line->setObjectName(QStringLiteral("errorLine"));
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(16, 4, 16, 4);
    auto* icon = new QLabel(line);
    icon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    label->setObjectName(QStringLiteral("errorLineLabel"));
    label->setWordWrap(true);
    layout->addWidget(icon);
    layout->addWidget(label, 1);
}

CleanupFooterButtons makeCleanupFooterButtons(QWidget* parent)
{
    CleanupFooterButtons buttons {new QPushButton(QObject::tr("Select All"), parent),
                                  new QPushButton(QObject::tr("Deselect All"), parent),
                                  new QPushButton(QObject::tr("Delete..."), parent)};
    buttons.selectAll->setObjectName(QStringLiteral("selectAllPushButton"));
    buttons.deselectAll->setObjectName(QStringLiteral("deselectAllPushButton"));
    buttons.deleteButton->setObjectName(QStringLiteral("deletePushButton"));
    buttons.deleteButton->setDefault(true);
    buttons.deleteButton->setShortcut(QKeySequence::Delete);
    return buttons;
}

} // namespace quillbay
