#include "core/views/FolderAuthorizationRequiredView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"

namespace quillbay {

FolderAuthorizationRequiredView::FolderAuthorizationRequiredView(const QString& description,
                                                                 const QString& systemImage,
                                                                 QWidget* parent)
    : QWidget(parent)
    , m_description(new QLabel(description, this))
    , m_errorRow(new QWidget(this))
    , m_errorLabel(new QLabel(m_errorRow))
    , m_actions(new QHBoxLayout)
{
    setObjectName(QStringLiteral("folderAuthorizationRequiredView"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addStretch();

    auto* icon = new QLabel(this);
    icon->setPixmap(symbolIcon(systemImage).pixmap(48, 48));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);

    auto* title = new QLabel(tr("Folder Authorization Required"), this);
    title->setObjectName(QStringLiteral("folderAuthorizationTitleLabel"));
    setTitleFont(title, TitleSize::panel);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);

    m_description->setObjectName(QStringLiteral("folderAuthorizationDescriptionLabel"));
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_description);

    m_errorRow->setObjectName(QStringLiteral("folderAuthorizationErrorRow"));
    auto* errorLayout = new QHBoxLayout(m_errorRow);
    errorLayout->setContentsMargins(0, 4, 0, 4);
    auto* errorIcon = new QLabel(m_errorRow);
    errorIcon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    m_errorLabel->setObjectName(QStringLiteral("folderAuthorizationErrorLabel"));
    m_errorLabel->setWordWrap(true);
    errorLayout->addStretch();
    errorLayout->addWidget(errorIcon);
    errorLayout->addWidget(m_errorLabel);
    errorLayout->addStretch();
    m_errorRow->hide();
    layout->addWidget(m_errorRow);

    m_actions->addStretch();
    m_actions->addStretch();
    layout->addLayout(m_actions);
    layout->addStretch();
}

void FolderAuthorizationRequiredView::setDescription(const QString& description)
{
    m_description->setText(description);
}

void FolderAuthorizationRequiredView::setErrorMessage(const std::optional<QString>& message)
{
    m_errorLabel->setText(message.value_or(QString()));
    m_errorRow->setVisible(message.has_value());
}

std::optional<QString> FolderAuthorizationRequiredView::errorMessage() const
{
    return m_errorRow->isVisibleTo(this) ? std::optional(m_errorLabel->text()) : std::nullopt;
}

QPushButton* FolderAuthorizationRequiredView::addAction(const QString& title, const QString& objectName)
{
    auto* button = new QPushButton(title, this);
    button->setObjectName(objectName);
    m_actions->insertWidget(m_actions->count() - 1, button);
    return button;
}

} // namespace quillbay
