#include "core/views/ComingSoonPanel.h"

#include <QLabel>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"

namespace quillbay {

ComingSoonPanel::ComingSoonPanel(const QString& title, const QString& systemImage, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("comingSoonPanel"));
    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    auto* icon = new QLabel(this);
    icon->setPixmap(symbolIcon(systemImage).pixmap(48, 48));
    icon->setAlignment(Qt::AlignCenter);
    auto* heading = new QLabel(title, this);
    heading->setObjectName(QStringLiteral("comingSoonTitleLabel"));
    setTitleFont(heading, TitleSize::panel);
    heading->setAlignment(Qt::AlignCenter);
    auto* note = new QLabel(QStringLiteral("This tool is coming in a later version."), this);
    note->setObjectName(QStringLiteral("comingSoonLabel"));
    note->setAlignment(Qt::AlignCenter);
    note->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(icon);
    layout->addWidget(heading);
    layout->addWidget(note);
    layout->addStretch();
}

} // namespace quillbay
