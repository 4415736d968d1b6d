#include "core/views/FolderAuthorizationRequiredView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

namespace quillbay {

FolderAuthorizationRequiredView::FolderAuthorizationRequiredView(const QString& description,
                                                                 const QString& systemImage,
                                                                 QWidget* parent)
    : QWidget(parent)
    , m_description(new QLabel(description))
    , m_errorLabel(new QLabel)
    , m_error(new QWidget)
    , m_actions(new QHBoxLayout)
{
    setObjectName(QStringLiteral("folderAuthorizationRequiredView"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addStretch();

    auto* icon = new QLabel;
    icon->setObjectName(QStringLiteral("authorizationIconLabel"));
    icon->setPixmap(symbolIcon(systemImage).pixmap(56, 56));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);

    auto* title = new QLabel(QStringLiteral("Folder Authorization Required"));
    title->setObjectName(QStringLiteral("folderAuthorizationTitleLabel"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);

    m_description->setObjectName(QStringLiteral("folderAuthorizationDescriptionLabel"));
    m_description->setAlignment(Qt::AlignCenter);
    m_description->setWordWrap(true);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_description);

    auto* errorRow = new QHBoxLayout(m_error);
    errorRow->setContentsMargins(0, 0, 0, 0);
    auto* warning = new QLabel;
    warning->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    m_errorLabel->setObjectName(QStringLiteral("folderAuthorizationErrorLabel"));
    m_errorLabel->setWordWrap(true);
    errorRow->addStretch();
    errorRow->addWidget(warning);
    errorRow->addWidget(m_errorLabel);
    errorRow->addStretch();
    m_error->setVisible(false);
    layout->addWidget(m_error);

    m_actions->addStretch();
    m_actions->addStretch();
    layout->addSpacing(6);
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
    m_error->setVisible(message.has_value());
}

std::optional<QString> FolderAuthorizationRequiredView::errorMessage() const
{
    if (m_error->isHidden())
        return std::nullopt;
    return m_errorLabel->text();
}

QPushButton* FolderAuthorizationRequiredView::addAction(const QString& title, const QString& objectName)
{
    auto* button = new QPushButton(title);
    button->setObjectName(objectName);
    // Insert before the trailing stretch so the buttons stay centred together.
    const int index = m_actions->count() - 1;
    if (index == 1)
        button->setDefault(true);
    m_actions->insertWidget(index, button);
    return button;
}

} // namespace quillbay
