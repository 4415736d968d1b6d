#include "core/views/UnavailablePanel.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"

namespace quillbay {

namespace {

constexpr int symbolSide = 44;

} // namespace

UnavailablePanel::UnavailablePanel(const QString& buttonTitle, QWidget* parent)
    : QWidget(parent)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(this))
    , m_description(new QLabel(this))
{
    setObjectName(QStringLiteral("unavailablePanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addStretch();
    m_icon->setObjectName(QStringLiteral("unavailableSymbolLabel"));
    m_icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_icon);
    m_title->setObjectName(QStringLiteral("unavailableTitleLabel"));
    setTitleFont(m_title, TitleSize::panel);
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setWordWrap(true);
    layout->addWidget(m_title);
    m_description->setObjectName(QStringLiteral("unavailableDescriptionLabel"));
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    // Descriptions often carry an error message worth copying into a report.
    m_description->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_description);
    if (!buttonTitle.isEmpty()) {
        m_button = new QPushButton(buttonTitle, this);
        m_button->setObjectName(QStringLiteral("unavailablePushButton"));
        layout->addSpacing(4);
        layout->addWidget(m_button, 0, Qt::AlignHCenter);
    }
    layout->addStretch();
}

void UnavailablePanel::setContent(const QString& systemImage, const QString& title, const QString& description)
{
    m_icon->setPixmap(symbolIcon(systemImage).pixmap(symbolSide, symbolSide));
    m_title->setText(title);
    m_description->setText(description);
}

void UnavailablePanel::setDescription(const QString& text)
{
    m_description->setText(text);
}

QString UnavailablePanel::title() const
{
    return m_title->text();
}

QString UnavailablePanel::description() const
{
    return m_description->text();
}

} // namespace quillbay
