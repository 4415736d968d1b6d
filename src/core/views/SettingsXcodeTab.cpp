#include "core/views/SettingsXcodeTab.h"

#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/views/SettingsStores.h"
#include "core/views/XcodeScanLocationsSettingsSection.h"
#include "foundation/BuildConfig.h"
#include "foundation/Defaults.h"
#include "platform/FolderBookmark.h"
#include "platform/Workspace.h"

namespace quillbay {

SettingsXcodeTab::SettingsXcodeTab(const SettingsStores& stores, std::function<void()> preparePanels, QWidget* parent)
    : QWidget(parent)
    , m_stores(stores)
    , m_preparePanels(std::move(preparePanels))
    , m_developerFolder(new QLabel(this))
    , m_choose(new QPushButton(QStringLiteral("Choose"), this))
    , m_remove(new QPushButton(QStringLiteral("Remove Authorization"), this))
    , m_derivedData(new XcodeScanLocationsSettingsSection(
          QStringLiteral("Derived Data"),
          QStringLiteral("Xcode/DerivedData"),
          QStringLiteral("The app will scan the files in these paths. If you have customized the Derived Data paths "
                         "in Xcode, you can add these custom paths to the list."),
          this))
    , m_archives(new XcodeScanLocationsSettingsSection(
          QStringLiteral("Archives"),
          QStringLiteral("Xcode/Archives"),
          QStringLiteral("The app will scan the files in these paths. If you have customized the Archives paths in "
                         "Xcode, you can add these custom paths to the list."),
          this))
{
    setObjectName(QStringLiteral("settingsXcodeTab"));
    auto* layout = new QVBoxLayout(this);

    auto* developer = new QGroupBox(QStringLiteral("Developer Folder"), this);
    developer->setObjectName(QStringLiteral("developerFolderGroupBox"));
    auto* developerLayout = new QVBoxLayout(developer);
    auto* developerForm = new QFormLayout;
    m_developerFolder->setObjectName(QStringLiteral("developerFolderLabel"));
    m_developerFolder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_developerFolder->setWordWrap(true);
    developerForm->addRow(QStringLiteral("Path:"), m_developerFolder);
    developerLayout->addLayout(developerForm);
    auto* developerButtons = new QHBoxLayout;
    m_choose->setObjectName(QStringLiteral("chooseDeveloperFolderPushButton"));
    m_remove->setObjectName(QStringLiteral("removeDeveloperFolderPushButton"));
    developerButtons->addStretch();
    developerButtons->addWidget(m_choose);
    developerButtons->addWidget(m_remove);
    developerLayout->addLayout(developerButtons);
    layout->addWidget(developer);

    m_derivedData->setObjectName(QStringLiteral("derivedDataSettingsSection"));
    m_archives->setObjectName(QStringLiteral("archivesSettingsSection"));
    layout->addWidget(m_derivedData);
    layout->addWidget(m_archives);

    auto* releases = new QGroupBox(QStringLiteral("Releases"), this);
    releases->setObjectName(QStringLiteral("releasesSettingsGroupBox"));
    auto* releasesForm = new QFormLayout(releases);
    const QString site = QStringLiteral(QUILLBAY_RELEASE_FEED_SITE);
    auto* source = new QLabel(QStringLiteral("<a href=\"%1\">%2</a>").arg(site, QUrl(site).host()), releases);
    m_dataSource = source;
    source->setObjectName(QStringLiteral("dataSourceLabel"));
    source->setTextFormat(Qt::RichText);
    source->setTextInteractionFlags(Qt::TextBrowserInteraction);
    source->setOpenExternalLinks(false);
    releasesForm->addRow(QStringLiteral("Data Source"), source);
    layout->addWidget(releases);
    layout->addStretch();

    AppViewModel& model = m_stores.viewModel;
    connect(source, &QLabel::linkActivated, this,
            [this](const QString& link) { m_stores.workspace.openUrl(QUrl(link)); });
    connect(m_choose, &QPushButton::clicked, this, [this] {
        m_preparePanels();
        m_stores.viewModel.chooseDeveloperFolder();
    });
    connect(m_remove, &QPushButton::clicked, &model, &AppViewModel::removeDeveloperFolderAuthorization);
    connect(m_derivedData, &XcodeScanLocationsSettingsSection::addLocationRequested, this, [this] {
        m_preparePanels();
        m_stores.viewModel.addCustomFolder(AppViewModel::CustomFolderKind::derivedData);
    });
    connect(m_archives, &XcodeScanLocationsSettingsSection::addLocationRequested, this, [this] {
        m_preparePanels();
        m_stores.viewModel.addCustomFolder(AppViewModel::CustomFolderKind::archives);
    });
    connect(m_derivedData, &XcodeScanLocationsSettingsSection::removeLocationsRequested, this,
            [this](const QSet<QUuid>& ids) {
                m_stores.viewModel.removeCustomFolders(AppViewModel::CustomFolderKind::derivedData, ids);
            });
    connect(m_archives, &XcodeScanLocationsSettingsSection::removeLocationsRequested, this,
            [this](const QSet<QUuid>& ids) {
                m_stores.viewModel.removeCustomFolders(AppViewModel::CustomFolderKind::archives, ids);
            });
    connect(&model, &AppViewModel::developerFolderAuthorizationChanged, this,
            &SettingsXcodeTab::refreshDeveloperFolder);
    connect(&model, &AppViewModel::cleanupStateChanged, this, &SettingsXcodeTab::refreshDeveloperFolder);
    connect(&model, &AppViewModel::cleanupStateChanged, this, &SettingsXcodeTab::refreshLocations);
    connect(&model, &AppViewModel::customFoldersChanged, this, &SettingsXcodeTab::refreshLocations);
    refreshDeveloperFolder();
    refreshLocations();
}

void SettingsXcodeTab::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // Rich text takes the link colour when it is laid out; lay it out again in the new one.
    if (event->type() == QEvent::PaletteChange && m_dataSource) {
        const QString text = m_dataSource->text();
        m_dataSource->clear();
        m_dataSource->setText(text);
    }
}

QString SettingsXcodeTab::developerFolderText() const
{
    const AppViewModel& model = m_stores.viewModel;
    if (!model.isDeveloperFolderAuthorized())
        return QStringLiteral("Not Selected");
    if (!model.developerFolderPath().isEmpty())
        return model.developerFolderPath();
    // Authorized by a bookmark that the cleanup screen has not opened yet: read the path
    // from it without opening the folder.
    const auto resolved
        = FolderBookmark::resolve(m_stores.defaults.dataValue(QLatin1String(AppViewModel::developerFolderBookmarkKey)));
    return resolved ? resolved->path : QStringLiteral("Not Selected");
}

void SettingsXcodeTab::refreshDeveloperFolder()
{
    const AppViewModel& model = m_stores.viewModel;
    m_developerFolder->setText(developerFolderText());
    const bool busy = model.scanning() || model.cleaning() || model.isRequestingDeveloperFolderAuthorization();
    m_choose->setEnabled(!busy);
    m_remove->setVisible(model.isDeveloperFolderAuthorized());
    m_remove->setEnabled(!model.scanning() && !model.cleaning());
}

void SettingsXcodeTab::refreshLocations()
{
    const AppViewModel& model = m_stores.viewModel;
    const bool busy = model.scanning() || model.cleaning();
    m_derivedData->setCustomFolders(model.customDerivedDataFolders());
    m_derivedData->setBusy(busy);
    m_archives->setCustomFolders(model.customArchivesFolders());
    m_archives->setBusy(busy);
}

} // namespace quillbay
