#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>

#include "CatalogViewFixture.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_catalog/views/HomebrewPackageTable.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

QStringList identifiersShown(const HomebrewPackageTable* table)
{
    QStringList out;
    const auto* model = table->packageModel();
    for (int row = 0; row < model->rowCount(); ++row)
        out << model->index(row, 0).data(HomebrewPackageTableModel::IdentifierRole).toString();
    return out;
}

class CatalogViewTest : public CatalogViewFixture
{
protected:
    void SetUp() override
    {
        CatalogViewFixture::SetUp();
        view = std::make_unique<HomebrewCatalogView>(*store, workspace);
        view->resize(900, 600);
        view->show();
        ASSERT_TRUE(waitUntil([&] { return view->currentContent() == view->catalogTable(); }));
        ASSERT_TRUE(waitUntil([&] { return !store->hasLoadTask(); }));
    }

    QLineEdit* searchField() const { return view->findChild<QLineEdit*>(u"searchLineEdit"_s); }
    void chooseKind(HomebrewCatalogKind kind) const
    {
        view->findChild<QAbstractButton*>(rawValue(kind) + u"KindToolButton"_s)->click();
    }

    std::unique_ptr<HomebrewCatalogView> view;
};

} // namespace

TEST_F(CatalogViewTest, SearchLayerFollowsTheKindWithoutNewSearchesAndKeepsTheCatalogScroll)
{
    chooseKind(HomebrewCatalogKind::formula);
    ASSERT_EQ(identifiersShown(view->catalogTable()),
              (QStringList {u"openssl@3"_s, u"curl"_s, u"wget"_s, u"libidn2"_s}));
    view->resize(900, 180);
    QApplication::processEvents();
    QScrollBar* scroll = view->catalogTable()->verticalScrollBar();
    ASSERT_GT(scroll->maximum(), 0);
    scroll->setValue(scroll->maximum());
    // The other kind's table scrolls on its own.
    QScrollBar* caskScroll = view->findChild<HomebrewPackageTable*>(u"caskTableView"_s)->verticalScrollBar();
    EXPECT_EQ(caskScroll->value(), 0);
    const int scrolledTo = scroll->value();

    // The search layer shows at the first keystroke, before the results arrive.
    QTest::keyClicks(searchField(), u"ssl"_s);
    EXPECT_TRUE(view->isSearchLayerVisible());
    EXPECT_EQ(view->currentSearchContent()->objectName(), u"searchingView"_s);
    ASSERT_TRUE(waitUntil([&] { return !store->isFiltering(); }));
    const qint64 searches = store->searchResultGeneration();

    struct Step
    {
        HomebrewCatalogKind kind;
        const char* shown;
        QStringList rows;
    };
    const Step steps[] = {
        {HomebrewCatalogKind::formula, "searchResultsTableView", {u"openssl@3"_s}},
        // No cask matches: the panel says so, whatever the formulae hold.
        {HomebrewCatalogKind::cask, "noResultsView", {}},
        {HomebrewCatalogKind::formula, "searchResultsTableView", {u"openssl@3"_s}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(rawValue(step.kind).toStdString());
        chooseKind(step.kind);
        EXPECT_EQ(searchField()->text(), u"ssl"_s);
        EXPECT_EQ(view->currentSearchContent()->objectName(), QString::fromLatin1(step.shown));
        if (!step.rows.isEmpty()) {
            EXPECT_EQ(identifiersShown(view->searchTable()), step.rows);
        }
        EXPECT_EQ(store->searchResultGeneration(), searches);
    }

    // The catalog table underneath kept its rows and its place through the search.
    EXPECT_EQ(view->catalogTable()->focusPolicy(), Qt::NoFocus);
    searchField()->clear();
    EXPECT_FALSE(view->isSearchLayerVisible());
    EXPECT_EQ(scroll->value(), scrolledTo);
    EXPECT_EQ(view->catalogTable()->focusPolicy(), Qt::StrongFocus);
}

TEST_F(CatalogViewTest, OpeningARowAndComingBackLeavesNothingSelected)
{
    chooseKind(HomebrewCatalogKind::formula);
    HomebrewPackageTable* table = view->catalogTable();
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        clickRow(table, 2);
        ASSERT_NE(view->detailView(), nullptr);
        EXPECT_EQ(view->detailView()->route(), (HomebrewPackageRoute {HomebrewCatalogKind::formula, u"wget"_s}));
        EXPECT_TRUE(table->selectionModel()->selectedRows().isEmpty());
        EXPECT_FALSE(table->selectedPackageID().has_value());
        view->detailView()->findChild<QAbstractButton*>(u"backToolButton"_s)->click();
        EXPECT_EQ(view->detailView(), nullptr);
        EXPECT_TRUE(table->isVisible());
        EXPECT_TRUE(table->selectionModel()->selectedRows().isEmpty());
    }
    // An id that names no row opens nothing.
    table->setSelectedPackageID(u"formula:no-such-package"_s);
    EXPECT_EQ(view->detailView(), nullptr);
}

TEST_F(CatalogViewTest, SortMenuReordersTheTableAndMarksTheCurrentOption)
{
    chooseKind(HomebrewCatalogKind::formula);
    struct Case
    {
        HomebrewSortOption option;
        QStringList rows;
    };
    const Case cases[] = {
        {HomebrewSortOption::nameAscending, {u"curl"_s, u"libidn2"_s, u"openssl@3"_s, u"wget"_s}},
        {HomebrewSortOption::installs30Days, {u"openssl@3"_s, u"curl"_s, u"wget"_s, u"libidn2"_s}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(rawValue(c.option).toStdString());
        QAction* pick = nullptr;
        for (QAction* action : view->sortMenu()->actions())
            if (action->text() == sortOptionTitle(c.option))
                pick = action;
        ASSERT_NE(pick, nullptr);
        const qint64 generation = store->catalogGeneration();
        pick->trigger();
        ASSERT_TRUE(waitUntil([&] { return store->catalogGeneration() > generation; }));
        EXPECT_EQ(identifiersShown(view->catalogTable()), c.rows);
        for (QAction* action : view->sortMenu()->actions()) {
            EXPECT_EQ(!action->icon().isNull(), action == pick) << action->text().toStdString();
        }
    }
    EXPECT_EQ(defaults->value(HomebrewCatalogStore::sortOptionKey).toString(), u"installs30Days"_s);
}

TEST_F(CatalogViewTest, SearchHistoryMenuListsSubmittedQueriesAndClears)
{
    const auto menuTexts = [&] {
        QStringList texts;
        for (QAction* action : view->searchHistoryMenu()->actions())
            texts << (action->isSeparator() ? u"--"_s : action->text());
        return texts;
    };
    EXPECT_EQ(menuTexts(), QStringList {u"No Search History"_s});
    for (const QString& query : {u"wget"_s, u"curl"_s, u"WGET"_s}) {
        searchField()->setText(query);
        QTest::keyClick(searchField(), Qt::Key_Return);
    }
    EXPECT_EQ(menuTexts(), (QStringList {u"WGET"_s, u"curl"_s, u"--"_s, u"Clear Search History"_s}));
    // Picking an entry searches for it without recording it again.
    view->searchHistoryMenu()->actions().at(1)->trigger();
    EXPECT_EQ(searchField()->text(), u"curl"_s);
    EXPECT_EQ(store->searchHistory(), (QStringList {u"WGET"_s, u"curl"_s}));
    view->searchHistoryMenu()->actions().last()->trigger();
    EXPECT_EQ(menuTexts(), QStringList {u"No Search History"_s});
}

TEST_F(CatalogViewFixture, UnreachableServiceShowsUnavailableUntilTryAgainReachesIt)
{
    // Nothing listens on port 1: the first load ends empty and offers "Try Again".
    auto offline = makeStore(u"http://127.0.0.1:1"_s);
    HomebrewCatalogView view(*offline, workspace);
    view.show();
    ASSERT_TRUE(waitUntil([&] { return offline->hasLoaded() && !offline->hasLoadTask(); }));
    EXPECT_EQ(view.currentContent()->objectName(), u"catalogUnavailableView"_s);
    const auto* errorLine = view.findChild<QLabel*>(u"refreshErrorLabel"_s);
    EXPECT_EQ(errorLine->text(), u"Some Homebrew data could not be updated. Cached data is shown when available."_s);

    // Before any load, "Try Again" still reads the cache first and then fetches.
    HomebrewCatalogView fresh(*store, workspace);
    EXPECT_FALSE(store->hasLoaded());
    EXPECT_EQ(fresh.currentContent()->objectName(), u"catalogUnavailableView"_s);
    fresh.findChild<QPushButton*>(u"tryAgainPushButton"_s)->click();
    EXPECT_EQ(fresh.currentContent()->objectName(), u"catalogLoadingView"_s);
    ASSERT_TRUE(waitUntil([&] { return fresh.currentContent() == fresh.catalogTable(); }));
    QStringList casks = identifiersShown(fresh.catalogTable());
    casks.sort();
    EXPECT_EQ(casks, (QStringList {u"firefox"_s, u"iterm2"_s}));
}
