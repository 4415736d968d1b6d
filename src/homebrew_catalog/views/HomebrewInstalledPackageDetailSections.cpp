#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"

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
#include "homebrew_installed/HomebrewInstalledStatusLabel.h"
#include "platform/Clipboard.h"

namespace quillbay {

using namespace Qt::StringLiterals;

namespace {

constexpr int copiedResetMilliseconds = 2000;

QLabel* valueLabel(const QString& text, bool monospaced)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    if (monospaced)
        label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return label;
}

QGroupBox* section(const QString& title, const QString& objectName, QWidget* parent)
{
    auto* box = new QGroupBox(title, parent);
    box->setObjectName(objectName);
    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    return box;
}

QWidget* symbolLine(const QString& symbol, QLabel* label)
{
    auto* line = new QWidget;
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(line);
    icon->setPixmap(symbolIcon(symbol).pixmap(16, 16));
    icon->setAccessibleName(symbol);
    label->setParent(line);
    row->addWidget(icon);
    row->addWidget(label, 1);
    return line;
}

} // namespace

HomebrewInstalledPackageDetailSections::HomebrewInstalledPackageDetailSections(HomebrewInstalledPackagesStore& store,
                                                                               HomebrewInstalledPackage package,
                                                                               QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_package(std::move(package))
    , m_actionFailed(section(u"Action Failed"_s, u"actionFailedGroupBox"_s, this))
    , m_actionFailedLabel(valueLabel({}, false))
{
    setObjectName(u"installedPackageDetailSections"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);

    m_actionFailedLabel->setObjectName(u"actionFailedLabel"_s);
    static_cast<QFormLayout*>(m_actionFailed->layout())
        ->addRow(symbolLine(u"exclamationmark.triangle"_s, m_actionFailedLabel));
    layout->addWidget(m_actionFailed);

    QGroupBox* local = section(u"Installed Locally"_s, u"installedLocallyGroupBox"_s, this);
    auto* form = static_cast<QFormLayout*>(local->layout());
    auto* type = new QLabel(m_package.kind == HomebrewCatalogKind::formula ? u"Formula"_s : u"Cask"_s);
    type->setObjectName(u"typeLabel"_s);
    form->addRow(u"Type"_s, type);
    QLabel* installedVersion = valueLabel(m_package.installedVersion, true);
    installedVersion->setObjectName(u"installedVersionLabel"_s);
    form->addRow(u"Installed Version"_s, installedVersion);
    QLabel* catalogVersion = valueLabel(catalogVersionText(m_package), true);
    catalogVersion->setObjectName(u"catalogVersionLabel"_s);
    form->addRow(u"Catalog Version"_s, catalogVersion);
    const HomebrewInstalledStatusLabel statusLabel = HomebrewInstalledStatusLabel::of(m_package);
    auto* status = new QLabel(statusLabel.text);
    status->setObjectName(u"updateStatusLabel"_s);
    status->setForegroundRole(QPalette::PlaceholderText);
    form->addRow(u"Update Status"_s, symbolLine(statusLabel.systemImage, status));
    auto* pathRow = new QHBoxLayout;
    QLabel* path = valueLabel(m_package.installationURL, false);
    path->setObjectName(u"installationPathLabel"_s);
    auto* reveal = new QToolButton(local);
    reveal->setObjectName(u"showInFinderToolButton"_s);
    reveal->setIcon(symbolIcon(u"folder"_s));
    reveal->setText(u"Show in Finder"_s);
    reveal->setToolTip(u"Show in Finder"_s);
    reveal->setAccessibleName(u"Show in Finder"_s);
    reveal->setToolButtonStyle(Qt::ToolButtonIconOnly);
    reveal->setAutoRaise(true);
    connect(reveal, &QToolButton::clicked, this, [this] { m_store.revealInstallation(m_package); });
    pathRow->addWidget(path, 1);
    pathRow->addWidget(reveal);
    form->addRow(u"Installation Path"_s, pathRow);
    layout->addWidget(local);

    QGroupBox* commands = section(u"Package Commands"_s, u"packageCommandsGroupBox"_s, this);
    m_copyUpgrade = addCopyRow(commands, u"Upgrade"_s, m_package.upgradeCommand(), u"Copy Upgrade Command"_s);
    m_copyUpgrade->setObjectName(u"copyUpgradeCommandPushButton"_s);
    m_copyUninstall = addCopyRow(commands, u"Uninstall"_s, m_package.uninstallCommand(), u"Copy Uninstall Command"_s);
    m_copyUninstall->setObjectName(u"copyUninstallCommandPushButton"_s);
    auto* footer = new QLabel(u"These package-level commands may affect other installed versions. Review them "
                              u"before running them in Terminal."_s);
    footer->setObjectName(u"packageCommandsFooterLabel"_s);
    footer->setWordWrap(true);
    footer->setForegroundRole(QPalette::PlaceholderText);
    static_cast<QFormLayout*>(commands->layout())->addRow(footer);
    layout->addWidget(commands);

    connect(&m_store, &HomebrewInstalledPackagesStore::stateChanged, this,
            &HomebrewInstalledPackageDetailSections::refresh);
    refresh();
}

HomebrewInstalledPackageDetailSections::~HomebrewInstalledPackageDetailSections()
{
    m_store.clearOperationError();
}

QPushButton* HomebrewInstalledPackageDetailSections::addCopyRow(QGroupBox* box,
                                                                const QString& title,
                                                                const QString& command,
                                                                const QString& label)
{
    auto* row = new QHBoxLayout;
    QLabel* commandLabel = valueLabel(command, true);
    commandLabel->setObjectName(title.toLower() + u"CommandLabel"_s);
    row->addWidget(commandLabel, 1);
    auto* button = new QPushButton(symbolIcon(u"doc.on.doc"_s), label, box);
    button->setProperty("command", command);
    button->setProperty("label", label);
    connect(button, &QPushButton::clicked, this, [this, command] { copyCommand(command); });
    row->addWidget(button);
    static_cast<QFormLayout*>(box->layout())->addRow(title, row);
    return button;
}

void HomebrewInstalledPackageDetailSections::copyCommand(const QString& command)
{
    copyTextToClipboard(command);
    m_copiedCommand = command;
    refresh();
    // A later press of the other button owns the state; this wake-up then changes nothing.
    QTimer::singleShot(copiedResetMilliseconds, this, [this, command] {
        if (m_copiedCommand != command)
            return;
        m_copiedCommand.reset();
        refresh();
    });
}

void HomebrewInstalledPackageDetailSections::refresh()
{
    const std::optional<QString>& failure = m_store.operationErrorMessage();
    m_actionFailed->setVisible(failure.has_value());
    m_actionFailedLabel->setText(failure.value_or(QString()));
    for (QPushButton* button : {m_copyUpgrade, m_copyUninstall}) {
        const bool copied = m_copiedCommand && *m_copiedCommand == button->property("command").toString();
        button->setText(copied ? u"Copied"_s : button->property("label").toString());
        button->setIcon(symbolIcon(copied ? u"checkmark"_s : u"doc.on.doc"_s));
    }
}

} // namespace quillbay
