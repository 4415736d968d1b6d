#include "homebrew_catalog/views/HomebrewCatalogView.h"

#include <QAction>
#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/views/KeyboardShortcuts.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "core/views/UnavailablePanel.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewCatalogColumnsPanel.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_catalog/views/HomebrewPackageTable.h"
#include "homebrew_catalog/views/HomebrewProgressView.h"

namespace quillbay {

using namespace Qt::StringLiterals;

namespace {

const QString loadingText = u"Loading Homebrew Catalog"_s;

QString tableIdentity(HomebrewCatalogKind kind, qint64 generation)
{
    return rawValue(kind) + u':' + QString::number(generation);
}

} // namespace

HomebrewCatalogView::HomebrewCatalogView(HomebrewCatalogStore& store,
                                         Workspace& workspace,
                                         HomebrewInstalledPackagesStore* installedStore,
                                         QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_workspace(workspace)
    , m_installedStore(installedStore)
    , m_navigation(new QStackedWidget(this))
    , m_catalogPage(new QWidget(m_navigation))
    , m_columnsPanel(new HomebrewCatalogColumnsPanel(store, this))
    , m_errorLine(new QWidget(m_catalogPage))
    , m_errorLabel(new QLabel(m_errorLine))
    , m_content(new QStackedWidget(m_catalogPage))
    , m_unavailable(new UnavailablePanel(u"Try Again"_s, m_content))
    , m_loading(new HomebrewProgressView(loadingText, m_content))
    , m_caskTable(new HomebrewPackageTable(m_content))
    , m_formulaTable(new HomebrewPackageTable(m_content))
    , m_searchLayer(new QStackedWidget(m_catalogPage))
    , m_searching(new HomebrewProgressView(loadingText, m_searchLayer))
    , m_noResults(new UnavailablePanel({}, m_searchLayer))
    , m_searchTable(new HomebrewPackageTable(m_searchLayer))
{
    setObjectName(u"homebrewCatalogView"_s);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(m_navigation);
    m_navigation->setObjectName(u"navigationStackedWidget"_s);
    m_navigation->addWidget(m_catalogPage);

    auto* layout = new QVBoxLayout(m_catalogPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildToolbar());

    m_errorLine->setObjectName(u"refreshErrorLine"_s);
    auto* errorLayout = new QHBoxLayout(m_errorLine);
    errorLayout->setContentsMargins(16, 4, 16, 6);
    auto* errorIcon = new QLabel(m_errorLine);
    errorIcon->setPixmap(symbolIcon(u"exclamationmark.triangle"_s).pixmap(14, 14));
    m_errorLabel->setObjectName(u"refreshErrorLabel"_s);
    m_errorLabel->setForegroundRole(QPalette::PlaceholderText);
    m_errorLabel->setWordWrap(true);
    errorLayout->addWidget(errorIcon);
    errorLayout->addWidget(m_errorLabel, 1);
    layout->addWidget(m_errorLine);

    m_unavailable->setObjectName(u"catalogUnavailableView"_s);
    m_unavailable->setContent(u"shippingbox"_s, u"Homebrew Catalog Unavailable"_s,
                              u"Connect to the internet and try again."_s);
    m_unavailable->button()->setObjectName(u"tryAgainPushButton"_s);
    m_loading->setObjectName(u"catalogLoadingView"_s);
    m_searching->setObjectName(u"searchingView"_s);
    m_noResults->setObjectName(u"noResultsView"_s);
    m_noResults->setContent(u"magnifyingglass"_s, u"No Packages Found"_s,
                            u"Try a different name, alias, or description."_s);
    m_caskTable->setObjectName(u"caskTableView"_s);
    m_formulaTable->setObjectName(u"formulaTableView"_s);
    m_searchTable->setObjectName(u"searchResultsTableView"_s);
    m_searchLayer->setObjectName(u"searchLayerStackedWidget"_s);
    m_searchLayer->setAutoFillBackground(true);
    m_searchLayer->addWidget(m_searching);
    m_searchLayer->addWidget(m_noResults);
    m_searchLayer->addWidget(m_searchTable);

    // The search layer lies over the catalog rather than replacing it: the table keeps
    // its rows and scroll position underneath, and is taken out of the focus chain, the
    // mouse's reach and the accessibility tree while it is covered.
    m_content->setObjectName(u"catalogContentStackedWidget"_s);
    m_content->addWidget(m_unavailable);
    m_content->addWidget(m_loading);
    m_content->addWidget(m_caskTable);
    m_content->addWidget(m_formulaTable);
    auto* stack = new QGridLayout;
    stack->setContentsMargins(0, 0, 0, 0);
    stack->addWidget(m_content, 0, 0);
    stack->addWidget(m_searchLayer, 0, 0);
    layout->addLayout(stack, 1);

    connect(m_unavailable->button(), &QPushButton::clicked, this, [this] { m_store.forceRefresh(); });
    connect(m_caskTable, &HomebrewPackageTable::openPackage, this, &HomebrewCatalogView::openPackage);
    connect(m_formulaTable, &HomebrewPackageTable::openPackage, this, &HomebrewCatalogView::openPackage);
    connect(m_searchTable, &HomebrewPackageTable::openPackage, this, &HomebrewCatalogView::openPackage);
    connect(&m_store, &HomebrewCatalogStore::changed, this, &HomebrewCatalogView::refresh);
    refresh();
}

QToolButton* HomebrewCatalogView::makeToolButton(const QString& objectName, const QString& label, const QString& symbol)
{
    auto* button = new QToolButton(m_catalogPage);
    button->setObjectName(objectName);
    button->setText(label);
    button->setToolTip(label);
    button->setAccessibleName(label);
    button->setIcon(symbolIcon(symbol));
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setAutoRaise(true);
    return button;
}

QWidget* HomebrewCatalogView::buildToolbar()
{
    auto* bar = new QWidget(m_catalogPage);
    bar->setObjectName(u"catalogToolbarWidget"_s);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(16, 10, 12, 8);
    auto* title = new QLabel(u"Catalog"_s, bar);
    title->setObjectName(u"titleLabel"_s);
    setTitleFont(title, TitleSize::screen);
    row->addWidget(title);
    row->addStretch(1);

    // "Type": two segments, "Cask" then "Formula".
    auto* picker = new QWidget(bar);
    picker->setObjectName(u"kindPickerWidget"_s);
    picker->setAccessibleName(u"Type"_s);
    picker->setToolTip(u"Type"_s);
    auto* segments = new QHBoxLayout(picker);
    segments->setContentsMargins(0, 0, 0, 0);
    segments->setSpacing(0);
    m_kindGroup = new QButtonGroup(picker);
    m_kindGroup->setExclusive(true);
    for (HomebrewCatalogKind kind : {HomebrewCatalogKind::cask, HomebrewCatalogKind::formula}) {
        auto* segment = new QToolButton(picker);
        segment->setObjectName(rawValue(kind) + u"KindToolButton"_s);
        segment->setText(kindLabel(kind));
        segment->setCheckable(true);
        segment->setMinimumWidth(72);
        m_kindGroup->addButton(segment, static_cast<int>(kind));
        segments->addWidget(segment);
        (kind == HomebrewCatalogKind::cask ? m_caskButton : m_formulaButton) = segment;
        connect(segment, &QToolButton::clicked, this, [this, kind] { m_store.setSelectedKind(kind); });
    }
    row->addWidget(picker);
    row->addStretch(1);

    QToolButton* sort = makeToolButton(u"sortToolButton"_s, u"Sort"_s, u"square.grid.3x1.below.line.grid.1x2"_s);
    m_sortMenu = new QMenu(sort);
    m_sortMenu->setObjectName(u"sortMenu"_s);
    for (HomebrewSortOption option : allSortOptions) {
        QAction* action = m_sortMenu->addAction(sortOptionTitle(option));
        action->setData(rawValue(option));
        connect(action, &QAction::triggered, this, [this, option] { m_store.setSortOption(option); });
    }
    sort->setMenu(m_sortMenu);
    sort->setPopupMode(QToolButton::InstantPopup);
    row->addWidget(sort);

    m_columnsButton = makeToolButton(u"columnsToolButton"_s, u"Table columns config"_s, u"tablecells"_s);
    connect(m_columnsButton, &QToolButton::clicked, this, [this] { m_columnsPanel->toggleBelow(m_columnsButton); });
    row->addWidget(m_columnsButton);

    m_searchField = new QLineEdit(bar);
    m_searchField->setObjectName(u"searchLineEdit"_s);
    m_searchField->setPlaceholderText(u"Search names, aliases, and descriptions"_s);
    m_searchField->setAccessibleName(u"Search the catalog"_s);
    addFindKey(this, m_searchField);
    m_searchField->setClearButtonEnabled(true);
    m_searchField->addAction(symbolIcon(u"magnifyingglass"_s), QLineEdit::LeadingPosition);
    m_searchField->setMinimumWidth(240);
    connect(m_searchField, &QLineEdit::textChanged, this, [this](const QString& text) { m_store.setSearchText(text); });
    connect(m_searchField, &QLineEdit::returnPressed, this, [this] { m_store.recordSearch(); });
    row->addWidget(m_searchField);

    QToolButton* history
        = makeToolButton(u"searchHistoryToolButton"_s, u"Search History"_s, u"clock.arrow.circlepath"_s);
    m_historyMenu = new QMenu(history);
    m_historyMenu->setObjectName(u"searchHistoryMenu"_s);
    history->setMenu(m_historyMenu);
    history->setPopupMode(QToolButton::InstantPopup);
    row->addWidget(history);
    return bar;
}

void HomebrewCatalogView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_store.loadIfNeeded();
}

HomebrewPackageTable* HomebrewCatalogView::catalogTable() const
{
    return m_store.selectedKind() == HomebrewCatalogKind::formula ? m_formulaTable : m_caskTable;
}

HomebrewPackageDetailView* HomebrewCatalogView::detailView() const
{
    return m_detail;
}

QWidget* HomebrewCatalogView::currentContent() const
{
    return m_content->currentWidget();
}

QWidget* HomebrewCatalogView::currentSearchContent() const
{
    return m_searchLayer->currentWidget();
}

bool HomebrewCatalogView::isSearchLayerVisible() const
{
    return !m_searchLayer->isHidden();
}

void HomebrewCatalogView::refresh()
{
    const HomebrewCatalogKind kind = m_store.selectedKind();
    m_kindGroup->button(static_cast<int>(kind))->setChecked(true);
    if (m_searchField->text() != m_store.searchText())
        m_searchField->setText(m_store.searchText());
    rebuildSortMenu();
    rebuildHistoryMenu();
    m_columnsPanel->syncFromStore();

    const auto& error = m_store.refreshErrorMessage();
    m_errorLine->setVisible(error.has_value());
    m_errorLabel->setText(error.value_or(QString()));

    const bool isFormula = kind == HomebrewCatalogKind::formula;
    const HomebrewPackageList& packages = isFormula ? m_store.formulae() : m_store.casks();
    const QList<HomebrewCatalogColumn> columns = m_store.visibleColumns();
    if (!m_store.isLoading() && !m_store.isRefreshing() && packages.isEmpty() && !m_store.catalogHasPackages(kind)) {
        m_content->setCurrentWidget(m_unavailable);
    } else if (packages.isEmpty()) {
        m_content->setCurrentWidget(m_loading);
    } else {
        catalogTable()->setContents(packages, columns, tableIdentity(kind, m_store.catalogGeneration()));
        m_content->setCurrentWidget(catalogTable());
    }

    const bool searching = m_store.hasSearchQuery();
    m_searchLayer->setVisible(searching);
    for (HomebrewPackageTable* table : {m_caskTable, m_formulaTable}) {
        table->setFocusPolicy(searching ? Qt::NoFocus : Qt::StrongFocus);
        table->setAccessibleName(searching ? QString() : u"Catalog"_s);
    }
    m_content->setAttribute(Qt::WA_TransparentForMouseEvents, searching);
    if (!searching)
        return;
    const HomebrewPackageList& results = isFormula ? m_store.formulaSearchResults() : m_store.caskSearchResults();
    if (m_store.isFiltering()) {
        m_searchLayer->setCurrentWidget(m_searching);
    } else if (results.isEmpty()) {
        m_searchLayer->setCurrentWidget(m_noResults);
    } else {
        m_searchTable->setContents(results, columns, tableIdentity(kind, m_store.searchResultGeneration()));
        m_searchLayer->setCurrentWidget(m_searchTable);
    }
    m_searchLayer->raise();
}

void HomebrewCatalogView::rebuildSortMenu()
{
    const QString current = rawValue(m_store.sortOption());
    const QIcon check = symbolIcon(u"checkmark"_s);
    for (QAction* action : m_sortMenu->actions()) {
        const bool isCurrent = action->data().toString() == current;
        // An empty icon of the same size keeps the titles aligned.
        action->setIcon(isCurrent ? check : QIcon());
        action->setIconVisibleInMenu(true);
        action->setProperty("isCurrent", isCurrent);
    }
}

void HomebrewCatalogView::rebuildHistoryMenu()
{
    const QStringList& history = m_store.searchHistory();
    if (m_historyMenu->property("entries").toStringList() == history && !m_historyMenu->actions().isEmpty())
        return;
    m_historyMenu->setProperty("entries", history);
    m_historyMenu->clear();
    if (history.isEmpty()) {
        m_historyMenu->addAction(u"No Search History"_s)->setEnabled(false);
        return;
    }
    for (const QString& entry : history) {
        QAction* action = m_historyMenu->addAction(entry);
        connect(action, &QAction::triggered, this, [this, entry] { m_store.setSearchText(entry); });
    }
    m_historyMenu->addSeparator();
    QAction* clear = m_historyMenu->addAction(u"Clear Search History"_s);
    clear->setObjectName(u"clearSearchHistoryAction"_s);
    clear->setIcon(symbolIcon(u"trash"_s));
    connect(clear, &QAction::triggered, this, [this] { m_store.clearSearchHistory(); });
}

void HomebrewCatalogView::openPackage(const HomebrewPackageRoute& route)
{
    closePackage();
    m_detail = new HomebrewPackageDetailView(m_store, m_workspace, route, std::nullopt, m_installedStore, m_navigation);
    m_navigation->addWidget(m_detail);
    m_navigation->setCurrentWidget(m_detail);
    connect(m_detail, &HomebrewPackageDetailView::closeRequested, this, &HomebrewCatalogView::closePackage);
}

void HomebrewCatalogView::closePackage()
{
    if (!m_detail)
        return;
    m_navigation->setCurrentWidget(m_catalogPage);
    m_navigation->removeWidget(m_detail);
    m_detail->deleteLater();
    m_detail = nullptr;
}

} // namespace quillbay
