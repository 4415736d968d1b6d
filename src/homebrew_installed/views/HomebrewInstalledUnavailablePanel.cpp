#include "homebrew_installed/views/HomebrewInstalledUnavailablePanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

namespace quillbay {

HomebrewInstalledUnavailablePanel::HomebrewInstalledUnavailablePanel(const QString& buttonTitle, QWidget* parent)
    : QWidget(parent)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(this))
    , m_description(new QLabel(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addStretch();
    m_icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_icon);
    m_title->setObjectName(QStringLiteral("panelTitleLabel"));
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    m_title->setFont(font);
    m_title->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_title);
    m_description->setObjectName(QStringLiteral("panelDescriptionLabel"));
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_description);
    if (!buttonTitle.isEmpty()) {
        m_button = new QPushButton(buttonTitle, this);
        auto* row = new QHBoxLayout;
        row->addStretch();
        row->addWidget(m_button);
        row->addStretch();
        layout->addLayout(row);
    }
    layout->addStretch();
}

void HomebrewInstalledUnavailablePanel::setContent(const QString& systemImage,
                                                   const QString& title,
                                                   const QString& description)
{
    m_icon->setPixmap(symbolIcon(systemImage).pixmap(48, 48));
    m_title->setText(title);
    m_description->setText(description);
}

} // namespace quillbay
