#include "homebrew_cache/views/HomebrewCacheUnavailablePanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

namespace quillbay {

HomebrewCacheUnavailablePanel::HomebrewCacheUnavailablePanel(const QString& systemImage,
                                                             const QString& title,
                                                             const QString& buttonTitle,
                                                             QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(title, this))
    , m_description(new QLabel(this))
    , m_button(new QPushButton(buttonTitle, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addStretch();
    auto* icon = new QLabel(this);
    icon->setPixmap(symbolIcon(systemImage).pixmap(48, 48));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    m_title->setFont(font);
    m_title->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_title);
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_description);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(m_button);
    row->addStretch();
    layout->addLayout(row);
    layout->addStretch();
}

void HomebrewCacheUnavailablePanel::setDescription(const QString& text)
{
    m_description->setText(text);
}

} // namespace quillbay
