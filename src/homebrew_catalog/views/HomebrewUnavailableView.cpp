#include "homebrew_catalog/views/HomebrewUnavailableView.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

namespace quillbay {

HomebrewUnavailableView::HomebrewUnavailableView(const QString& systemImage,
                                                 const QString& title,
                                                 const QString& description,
                                                 const QString& buttonTitle,
                                                 QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel(title, this))
    , m_description(new QLabel(description, this))
{
    setObjectName(QStringLiteral("unavailableView"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addStretch();
    auto* icon = new QLabel(this);
    icon->setPixmap(symbolIcon(systemImage).pixmap(44, 44));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    m_title->setFont(font);
    m_title->setObjectName(QStringLiteral("unavailableTitleLabel"));
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setWordWrap(true);
    layout->addWidget(m_title);
    m_description->setObjectName(QStringLiteral("unavailableDescriptionLabel"));
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    m_description->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_description);
    if (!buttonTitle.isEmpty()) {
        m_button = new QPushButton(buttonTitle, this);
        m_button->setObjectName(QStringLiteral("tryAgainPushButton"));
        layout->addSpacing(4);
        layout->addWidget(m_button, 0, Qt::AlignHCenter);
    }
    layout->addStretch();
}

void HomebrewUnavailableView::setDescription(const QString& text)
{
    m_description->setText(text);
}

QString HomebrewUnavailableView::title() const
{
    return m_title->text();
}

QString HomebrewUnavailableView::description() const
{
    return m_description->text();
}

} // namespace quillbay
