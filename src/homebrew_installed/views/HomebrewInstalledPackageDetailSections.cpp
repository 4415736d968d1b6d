#include "homebrew_installed/views/HomebrewInstalledPackageDetailSections.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "homebrew_installed/views/HomebrewInstalledStatusLabel.h"
#include "platform/Clipboard.h"

namespace quillbay {

namespace {

QLabel* valueLabel(const QString& text, const QString& objectName, bool monospaced, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (monospaced)
        label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return label;
}

QWidget* row(QWidget* value, QWidget* button, QWidget* parent)
{
    auto* holder = new QWidget(parent);
    auto* layout = new QHBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(value, 1);
    layout->addWidget(button);
    return holder;
}

} // namespace

HomebrewInstalledPackageDetailSections::HomebrewInstalledPackageDetailSections(HomebrewInstalledPackagesStore& store,
                                                                               HomebrewInstalledPackage package,
                                                                               QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_package(std::move(package))
    , m_actionFailed(new QGroupBox(tr("Action Failed"), this))
    , m_actionFailedLabel(new QLabel(m_actionFailed))
    , m_catalogVersion(nullptr)
    , m_statusIcon(new QLabel(this))
    , m_statusText(new QLabel(this))
    , m_reveal(new QToolButton(this))
    , m_copyUpgrade(new QPushButton(this))
    , m_copyUninstall(new QPushButton(this))
{
    setObjectName(QStringLiteral("installedPackageDetailSections"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    // 1. The failure of the last action on this package.
    m_actionFailed->setObjectName(QStringLiteral("actionFailedGroupBox"));
    auto* failedLayout = new QHBoxLayout(m_actionFailed);
    auto* failedIcon = new QLabel(m_actionFailed);
    failedIcon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    m_actionFailedLabel->setObjectName(QStringLiteral("actionFailedLabel"));
    m_actionFailedLabel->setWordWrap(true);
    failedLayout->addWidget(failedIcon);
    failedLayout->addWidget(m_actionFailedLabel, 1);
    layout->addWidget(m_actionFailed);

    // 2. What is installed, and where.
    auto* installed = new QGroupBox(tr("Installed Locally"), this);
    installed->setObjectName(QStringLiteral("installedLocallyGroupBox"));
    auto* form = new QFormLayout(installed);
    form->addRow(tr("Type"), valueLabel(kindLabel(m_package.kind), QStringLiteral("typeLabel"), false, installed));
    form->addRow(tr("Installed Version"),
                 valueLabel(m_package.installedVersion, QStringLiteral("installedVersionLabel"), true, installed));
    m_catalogVersion = valueLabel(QString(), QStringLiteral("catalogVersionLabel"), true, installed);
    form->addRow(tr("Catalog Version"), m_catalogVersion);
    auto* status = new QWidget(installed);
    auto* statusLayout = new QHBoxLayout(status);
    statusLayout->setContentsMargins(0, 0, 0, 0);
    m_statusText->setObjectName(QStringLiteral("updateStatusLabel"));
    m_statusText->setForegroundRole(QPalette::PlaceholderText);
    statusLayout->addWidget(m_statusIcon);
    statusLayout->addWidget(m_statusText, 1);
    form->addRow(tr("Update Status"), status);
    m_reveal->setObjectName(QStringLiteral("showInFinderToolButton"));
    m_reveal->setIcon(symbolIcon(QStringLiteral("folder")));
    m_reveal->setText(tr("Show in Finder"));
    m_reveal->setToolTip(tr("Show in Finder"));
    m_reveal->setAccessibleName(tr("Show in Finder"));
    m_reveal->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_reveal->setAutoRaise(true);
    auto* path = valueLabel(m_package.installationURL, QStringLiteral("installationPathLabel"), false, installed);
    path->setWordWrap(true);
    form->addRow(tr("Installation Path"), row(path, m_reveal, installed));
    layout->addWidget(installed);

    // 3. The commands, to copy and run in a terminal.
    auto* commands = new QGroupBox(tr("Package Commands"), this);
    commands->setObjectName(QStringLiteral("packageCommandsGroupBox"));
    auto* commandsLayout = new QVBoxLayout(commands);
    auto* commandForm = new QFormLayout;
    m_copyUpgrade->setObjectName(QStringLiteral("copyUpgradePushButton"));
    m_copyUninstall->setObjectName(QStringLiteral("copyUninstallPushButton"));
    commandForm->addRow(
        tr("Upgrade"),
        row(valueLabel(m_package.upgradeCommand(), QStringLiteral("upgradeCommandLabel"), true, commands),
            m_copyUpgrade, commands));
    commandForm->addRow(
        tr("Uninstall"),
        row(valueLabel(m_package.uninstallCommand(), QStringLiteral("uninstallCommandLabel"), true, commands),
            m_copyUninstall, commands));
    commandsLayout->addLayout(commandForm);
    auto* footer = new QLabel(tr("These package-level commands may affect other installed versions. Review them "
                                 "before running them in Terminal."),
                              commands);
    footer->setObjectName(QStringLiteral("packageCommandsFooterLabel"));
    footer->setWordWrap(true);
    footer->setForegroundRole(QPalette::PlaceholderText);
    commandsLayout->addWidget(footer);
    layout->addWidget(commands);
    layout->addStretch();

    connect(m_reveal, &QToolButton::clicked, this, [this] { m_store.revealInstallation(m_package); });
    connect(m_copyUpgrade, &QPushButton::clicked, this, [this] { copy(m_package.upgradeCommand()); });
    connect(m_copyUninstall, &QPushButton::clicked, this, [this] { copy(m_package.uninstallCommand()); });
    connect(&m_store, &HomebrewInstalledPackagesStore::stateChanged, this,
            &HomebrewInstalledPackageDetailSections::refresh);
    connect(&m_store, &HomebrewInstalledPackagesStore::packagesChanged, this,
            &HomebrewInstalledPackageDetailSections::refreshPackage);
    refreshCopyButtons();
    refreshPackage();
    refresh();
}

HomebrewInstalledPackageDetailSections::~HomebrewInstalledPackageDetailSections()
{
    m_store.clearOperationError();
}

void HomebrewInstalledPackageDetailSections::refresh()
{
    const std::optional<QString>& message = m_store.operationErrorMessage();
    m_actionFailed->setVisible(message.has_value());
    m_actionFailedLabel->setText(message.value_or(QString()));
}

void HomebrewInstalledPackageDetailSections::refreshPackage()
{
    // The catalog may arrive after the page opened: take the newer join of the same row.
    const QString id = m_package.id();
    for (const auto* list : {&m_store.formulae(), &m_store.casks()}) {
        for (const HomebrewInstalledPackage& candidate : *list) {
            if (candidate.id() == id)
                m_package.catalogSummary = candidate.catalogSummary;
        }
    }
    m_catalogVersion->setText(catalogVersionText(m_package));
    const HomebrewInstalledStatusLabel label = HomebrewInstalledStatusLabel::of(m_package);
    m_statusIcon->setPixmap(symbolIcon(label.systemImage).pixmap(16, 16));
    m_statusText->setText(label.text);
}

void HomebrewInstalledPackageDetailSections::copy(const QString& command)
{
    copyTextToClipboard(command);
    m_copiedCommand = command;
    refreshCopyButtons();
    // Only this press's own "Copied" ends here; a later press keeps its full time.
    QTimer::singleShot(copiedResetMilliseconds, this, [this, command] {
        if (m_copiedCommand != command)
            return;
        m_copiedCommand.reset();
        refreshCopyButtons();
    });
}

void HomebrewInstalledPackageDetailSections::refreshCopyButtons()
{
    const auto show = [this](QPushButton* button, const QString& command, const QString& label) {
        const bool copied = m_copiedCommand == command;
        button->setText(copied ? tr("Copied") : label);
        button->setIcon(symbolIcon(copied ? QStringLiteral("checkmark") : QStringLiteral("doc.on.doc")));
    };
    show(m_copyUpgrade, m_package.upgradeCommand(), tr("Copy Upgrade Command"));
    show(m_copyUninstall, m_package.uninstallCommand(), tr("Copy Uninstall Command"));
}

} // namespace quillbay
