#include "homebrew_installed/views/HomebrewInstalledPackagesView.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/views/KeyboardShortcuts.h"
#include "core/views/StatusPanels.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesContent.h"

namespace quillbay {

namespace {

QToolButton* segment(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setText(text);
    button->setCheckable(true);
    button->setToolTip(QObject::tr("Type"));
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setMinimumWidth(72);
    return button;
}

} // namespace

HomebrewInstalledPackagesView::HomebrewInstalledPackagesView(HomebrewInstalledPackagesStore& store,
                                                             HomebrewCatalogStore& catalogStore,
                                                             QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_catalogStore(catalogStore)
    , m_back(new QToolButton(this))
    , m_title(new QLabel(tr("Installed"), this))
    , m_kind(new QButtonGroup(this))
    , m_caskButton(segment(kindLabel(HomebrewCatalogKind::cask), QStringLiteral("caskToolButton"), this))
    , m_formulaButton(segment(kindLabel(HomebrewCatalogKind::formula), QStringLiteral("formulaToolButton"), this))
    , m_rescan(new QToolButton(this))
    , m_search(new QLineEdit(this))
    , m_listPage(new QWidget(this))
    , m_errorLine(new QWidget(m_listPage))
    , m_errorLabel(new QLabel(m_errorLine))
    , m_content(new HomebrewInstalledPackagesContent(store, m_listPage))
    , m_navigation(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("homebrewInstalledPackagesView"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* titleBar = new QHBoxLayout;
    titleBar->setContentsMargins(16, 10, 12, 6);
    m_back->setObjectName(QStringLiteral("backToolButton"));
    m_back->setArrowType(Qt::LeftArrow);
    m_back->setToolTip(tr("Back"));
    m_back->setAccessibleName(tr("Back"));
    m_back->setAutoRaise(true);
    m_title->setObjectName(QStringLiteral("pageTitleLabel"));
    setTitleFont(m_title, TitleSize::screen);

    // The segmented kind picker: "Cask" then "Formula", exactly one on.
    auto* picker = new QWidget(this);
    picker->setObjectName(QStringLiteral("kindPicker"));
    picker->setToolTip(tr("Type"));
    auto* pickerLayout = new QHBoxLayout(picker);
    pickerLayout->setContentsMargins(0, 0, 0, 0);
    pickerLayout->setSpacing(0);
    m_kind->setExclusive(true);
    m_kind->addButton(m_caskButton);
    m_kind->addButton(m_formulaButton);
    pickerLayout->addWidget(m_caskButton);
    pickerLayout->addWidget(m_formulaButton);

    m_rescan->setObjectName(QStringLiteral("rescanToolButton"));
    m_rescan->setIcon(symbolIcon(QStringLiteral("arrow.clockwise")));
    m_rescan->setText(tr("Rescan"));
    m_rescan->setToolTip(tr("Rescan"));
    m_rescan->setAccessibleName(tr("Rescan"));
    m_rescan->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_rescan->setAutoRaise(true);

    m_search->setObjectName(QStringLiteral("searchLineEdit"));
    m_search->setAccessibleName(tr("Search installed packages"));
    addFindKey(this, m_search);
    m_rescan->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    m_search->setPlaceholderText(tr("Search installed packages"));
    m_search->setClearButtonEnabled(true);
    m_search->addAction(symbolIcon(QStringLiteral("magnifyingglass")), QLineEdit::LeadingPosition);
    m_search->setMaximumWidth(260);

    titleBar->addWidget(m_back);
    titleBar->addWidget(m_title);
    titleBar->addStretch();
    titleBar->addWidget(picker);
    titleBar->addSpacing(8);
    titleBar->addWidget(m_rescan);
    titleBar->addSpacing(8);
    titleBar->addWidget(m_search, 1);
    layout->addLayout(titleBar);

    auto* listLayout = new QVBoxLayout(m_listPage);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->setSpacing(0);
    layOutErrorLine(m_errorLine, m_errorLabel);
    listLayout->addWidget(m_errorLine);
    listLayout->addWidget(m_content, 1);
    m_navigation->addWidget(m_listPage);
    layout->addWidget(m_navigation, 1);

    connect(m_back, &QToolButton::clicked, this, &HomebrewInstalledPackagesView::goBack);
    connect(m_caskButton, &QToolButton::clicked, this, [this] { m_store.setSelectedKind(HomebrewCatalogKind::cask); });
    connect(m_formulaButton, &QToolButton::clicked, this,
            [this] { m_store.setSelectedKind(HomebrewCatalogKind::formula); });
    connect(m_rescan, &QToolButton::clicked, &m_store, &HomebrewInstalledPackagesStore::rescan);
    connect(m_search, &QLineEdit::textChanged, &m_store, &HomebrewInstalledPackagesStore::setSearchText);
    connect(m_content, &HomebrewInstalledPackagesContent::openPackage, this,
            &HomebrewInstalledPackagesView::openPackage);
    connect(&m_store, &HomebrewInstalledPackagesStore::stateChanged, this, &HomebrewInstalledPackagesView::refresh);
    connect(&m_store, &HomebrewInstalledPackagesStore::selectedKindChanged, this,
            &HomebrewInstalledPackagesView::refresh);
    connect(&m_store, &HomebrewInstalledPackagesStore::searchTextChanged, this, [this] {
        // The store may empty the field itself (removing the authorization).
        if (m_search->text() != m_store.searchText())
            m_search->setText(m_store.searchText());
    });
    refresh();
}

void HomebrewInstalledPackagesView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // The catalog first, so that the store starts with whatever rows it already has.
    m_catalogStore.loadIfNeeded();
    m_store.start(m_catalogStore.summariesByRoute());
}

int HomebrewInstalledPackagesView::navigationDepth() const
{
    return m_navigation->count() - 1;
}

QWidget* HomebrewInstalledPackagesView::currentPackagePage() const
{
    return navigationDepth() > 0 ? m_navigation->currentWidget() : nullptr;
}

void HomebrewInstalledPackagesView::openPackage(const HomebrewInstalledPackage& package)
{
    push(package.route(), package);
}

void HomebrewInstalledPackagesView::openRoute(const HomebrewPackageRoute& route)
{
    push(route, std::nullopt);
}

void HomebrewInstalledPackagesView::push(const HomebrewPackageRoute& route,
                                         const std::optional<HomebrewInstalledPackage>& installedPackage)
{
    emit packageRequested(route);
    QWidget* page = m_packagePageFactory ? m_packagePageFactory(route, installedPackage, m_navigation)
                                         : defaultPackagePage(installedPackage, m_navigation);
    if (!page)
        return;
    const std::optional<HomebrewPackageSummary> summary = m_catalogStore.summary(route);
    m_pageTitles.append(installedPackage ? installedPackage->displayName()
                                         : (summary ? summary->displayName : route.identifier));
    m_navigation->addWidget(page);
    m_navigation->setCurrentWidget(page);
    refresh();
}

void HomebrewInstalledPackagesView::goBack()
{
    if (navigationDepth() == 0)
        return;
    QWidget* page = m_navigation->widget(m_navigation->count() - 1);
    m_navigation->removeWidget(page);
    m_pageTitles.removeLast();
    // Deleted now, not later: its going away is what clears the action failure.
    delete page;
    m_navigation->setCurrentIndex(m_navigation->count() - 1);
    refresh();
}

QWidget*
HomebrewInstalledPackagesView::defaultPackagePage(const std::optional<HomebrewInstalledPackage>& installedPackage,
                                                  QWidget* parent)
{
    if (!installedPackage)
        return nullptr;
    auto* scroll = new QScrollArea(parent);
    scroll->setObjectName(QStringLiteral("packagePageScrollArea"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* holder = new QWidget(scroll);
    auto* holderLayout = new QVBoxLayout(holder);
    holderLayout->setContentsMargins(16, 8, 16, 16);
    holderLayout->addWidget(new HomebrewInstalledPackageDetailSections(m_store, *installedPackage, holder));
    holderLayout->addStretch();
    scroll->setWidget(holder);
    return scroll;
}

void HomebrewInstalledPackagesView::refresh()
{
    const bool atList = navigationDepth() == 0;
    m_back->setVisible(!atList);
    m_title->setText(atList ? tr("Installed") : m_pageTitles.last());
    for (QWidget* control : {static_cast<QWidget*>(m_caskButton), static_cast<QWidget*>(m_formulaButton),
                             static_cast<QWidget*>(m_rescan), static_cast<QWidget*>(m_search)})
        control->setVisible(atList);
    (m_store.selectedKind() == HomebrewCatalogKind::cask ? m_caskButton : m_formulaButton)->setChecked(true);
    m_rescan->setEnabled(m_store.isAuthorized() && !m_store.isScanning());
    m_errorLine->setVisible(m_store.isAuthorized() && m_store.hasScannedThisLaunch()
                            && m_store.errorMessage().has_value());
    m_errorLabel->setText(m_store.errorMessage().value_or(QString()));
}

} // namespace quillbay
