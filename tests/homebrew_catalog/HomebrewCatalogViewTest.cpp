#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "CatalogServiceFixture.h"
#include "core/views/UnavailablePanel.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_catalog/views/HomebrewPackageTable.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"
#include "platform/Workspace.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

// The screens only look the desktop up; nothing here is ever opened.
class NoWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl&) override { return true; }
    bool revealFiles(const QStringList&) override { return true; }
    std::optional<QString> applicationPath(const QString&) override { return std::nullopt; }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return false; }
    std::optional<QString> openApplication(const QString&) override { return std::nullopt; }
};

QStringList identifiersShown(const HomebrewPackageTable* table)
{
    QStringList out;
    const auto* model = table->packageModel();
    for (int row = 0; row < model->rowCount(); ++row)
        out << model->index(row, 0).data(HomebrewPackageTableModel::IdentifierRole).toString();
    return out;
}

// The visible section titles of the page, top to bottom.
QStringList sectionTitles(const HomebrewPackageDetailView& view)
{
    QStringList titles;
    for (QGroupBox* box : view.form()->findChildren<QGroupBox*>())
        if (!box->isHidden())
            titles << box->title();
    return titles;
}

bool hasLoaded(const HomebrewCatalogStore& store, const HomebrewPackageRoute& route)
{
    return store.detail(route).has_value() && !store.detailLoadingRoutes().contains(route);
}

QPushButton* linkTo(const HomebrewPackageDetailView& view, const QString& identifier)
{
    for (QPushButton* button : view.form()->findChildren<QPushButton*>(u"dependencyLinkPushButton"_s))
        if (button->text() == identifier)
            return button;
    return nullptr;
}

// A catalog service on loopback with a small published catalog, and a store over a fresh
// cache folder talking to it.
class CatalogViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        service.publish(
            u"A"_s,
            {{u"wget"_s, u"Internet file retriever"_s, u"1.24.5"_s, 0, {u"libidn2"_s, u"openssl@3"_s}},
             {u"openssl@3"_s, u"Cryptography and SSL/TLS Toolkit"_s, u"3.4.0"_s},
             {u"libidn2"_s, u"International domain name library"_s},
             {u"curl"_s, u"Get a file from an HTTP server"_s}},
            {{u"firefox"_s, u"Mozilla Firefox"_s, u"Web browser"_s},
             {u"iterm2"_s, u"iTerm2"_s, u"Terminal emulator"_s}},
            {{u"openssl@3"_s, u"900"_s}, {u"curl"_s, u"500"_s}, {u"wget"_s, u"300"_s}, {u"libidn2"_s, u"100"_s}});
        defaults = std::make_unique<SettingsDefaults>(tree.path(u"settings.ini"_s));
        store = makeStore(service.baseURL());
    }

    std::unique_ptr<HomebrewCatalogStore> makeStore(const QString& baseURL)
    {
        return makeCatalogStore(baseURL, tree.path(u"cache"_s), *defaults);
    }

    CatalogServiceFixture service;
    TempTree tree;
    NoWorkspace workspace;
    std::unique_ptr<SettingsDefaults> defaults;
    std::unique_ptr<HomebrewCatalogStore> store;
};

} // namespace

TEST_F(CatalogViewTest, SearchKeepsTheCatalogScrollThenARowOpensItsPageAndBack)
{
    HomebrewCatalogView view(*store, workspace);
    view.resize(900, 600);
    view.show();
    ASSERT_TRUE(waitUntil([&] { return view.currentContent() == view.catalogTable() && !store->hasLoadTask(); }));
    QLineEdit* searchField = view.findChild<QLineEdit*>(u"searchLineEdit"_s);
    const auto chooseKind = [&](HomebrewCatalogKind kind) {
        view.findChild<QAbstractButton*>(rawValue(kind) + u"KindToolButton"_s)->click();
    };
    chooseKind(HomebrewCatalogKind::formula);
    HomebrewPackageTable* table = view.catalogTable();
    ASSERT_EQ(identifiersShown(table), (QStringList {u"openssl@3"_s, u"curl"_s, u"wget"_s, u"libidn2"_s}));
    view.resize(900, 180);
    QApplication::processEvents();
    QScrollBar* scroll = table->verticalScrollBar();
    ASSERT_GT(scroll->maximum(), 0);
    scroll->setValue(scroll->maximum());
    const int scrolledTo = scroll->value();

    // The search layer shows at the first keystroke, before the results arrive.
    QTest::keyClicks(searchField, u"ssl"_s);
    EXPECT_TRUE(view.isSearchLayerVisible());
    EXPECT_EQ(view.currentSearchContent()->objectName(), u"searchingView"_s);
    ASSERT_TRUE(waitUntil([&] { return !store->isFiltering(); }));
    const qint64 searches = store->searchResultGeneration();
    // No cask matches: the panel says so, whatever the formulae hold; switching searches nothing anew.
    for (const HomebrewCatalogKind kind : {HomebrewCatalogKind::formula, HomebrewCatalogKind::cask}) {
        SCOPED_TRACE(rawValue(kind).toStdString());
        chooseKind(kind);
        EXPECT_EQ(searchField->text(), u"ssl"_s);
        const bool formula = kind == HomebrewCatalogKind::formula;
        EXPECT_EQ(view.currentSearchContent()->objectName(),
                  formula ? u"searchResultsTableView"_s : u"noResultsView"_s);
        if (formula) {
            EXPECT_EQ(identifiersShown(view.searchTable()), QStringList {u"openssl@3"_s});
        }
        EXPECT_EQ(store->searchResultGeneration(), searches);
    }
    chooseKind(HomebrewCatalogKind::formula);

    // The catalog table underneath kept its rows and its place through the search.
    EXPECT_EQ(table->focusPolicy(), Qt::NoFocus);
    searchField->clear();
    EXPECT_FALSE(view.isSearchLayerVisible());
    EXPECT_EQ(scroll->value(), scrolledTo);
    EXPECT_EQ(table->focusPolicy(), Qt::StrongFocus);

    // Clicking a row opens its page and leaves nothing selected.
    view.resize(900, 900);
    QApplication::processEvents();
    table->scrollToTop();
    const QRect cell = table->visualRect(table->model()->index(2, 0));
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
    const HomebrewPackageRoute wget {HomebrewCatalogKind::formula, u"wget"_s};
    HomebrewPackageDetailView* page = view.detailView();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->route(), wget);
    EXPECT_TRUE(table->selectionModel()->selectedRows().isEmpty());
    EXPECT_FALSE(table->selectedPackageID().has_value());
    ASSERT_TRUE(waitUntil([&] { return hasLoaded(*store, wget); }));
    EXPECT_EQ(page->title(), u"wget"_s);
    EXPECT_EQ(sectionTitles(*page),
              (QStringList {u"Overview"_s, u"Install Command"_s, u"Installation Statistics"_s, u"Dependencies"_s}));

    auto* copy = page->findChild<QPushButton*>(u"copyInstallCommandPushButton"_s);
    ASSERT_NE(copy, nullptr);
    QApplication::clipboard()->setText(u"something else"_s);
    copy->click();
    EXPECT_EQ(QApplication::clipboard()->text(), u"brew install wget"_s);

    // Following a dependency pushes its page; back pops it, and back again closes the page.
    QPushButton* link = linkTo(*page, u"openssl@3"_s);
    ASSERT_NE(link, nullptr);
    link->click();
    const HomebrewPackageRoute openssl {HomebrewCatalogKind::formula, u"openssl@3"_s};
    EXPECT_EQ(page->depth(), 2);
    EXPECT_EQ(page->route(), openssl);
    ASSERT_TRUE(waitUntil([&] { return hasLoaded(*store, openssl) && page->title() == u"openssl@3"_s; }));
    // openssl@3 has no dependencies of its own.
    EXPECT_EQ(sectionTitles(*page), (QStringList {u"Overview"_s, u"Install Command"_s, u"Installation Statistics"_s}));
    auto* back = page->findChild<QAbstractButton*>(u"backToolButton"_s);
    back->click();
    EXPECT_EQ(page->route(), wget);
    EXPECT_EQ(page->depth(), 1);
    EXPECT_NE(linkTo(*page, u"libidn2"_s), nullptr);
    back->click();
    EXPECT_EQ(view.detailView(), nullptr);
    EXPECT_TRUE(table->isVisible());
    EXPECT_TRUE(table->selectionModel()->selectedRows().isEmpty());
    // An id that names no row opens nothing.
    table->setSelectedPackageID(u"formula:no-such-package"_s);
    EXPECT_EQ(view.detailView(), nullptr);
}

TEST_F(CatalogViewTest, UnreachableServiceShowsUnavailableUntilTryAgainReachesIt)
{
    // Nothing listens on port 1: the first load ends empty and offers "Try Again".
    auto offline = makeStore(u"http://127.0.0.1:1"_s);
    HomebrewCatalogView view(*offline, workspace);
    view.show();
    ASSERT_TRUE(waitUntil([&] { return offline->hasLoaded() && !offline->hasLoadTask(); }));
    EXPECT_EQ(view.currentContent()->objectName(), u"catalogUnavailableView"_s);
    const auto* errorLine = view.findChild<QLabel*>(u"refreshErrorLabel"_s);
    EXPECT_EQ(errorLine->text(), u"Some Homebrew data could not be updated. Cached data is shown when available."_s);

    // A package page without catalog or cache falls back to the identifier and offers "Try Again".
    const HomebrewPackageRoute route {HomebrewCatalogKind::cask, u"some-app"_s};
    HomebrewPackageDetailView page(*offline, workspace, route);
    page.show();
    EXPECT_EQ(page.title(), u"some-app"_s);
    EXPECT_EQ(page.currentContent()->objectName(), u"detailLoadingView"_s);
    ASSERT_TRUE(waitUntil([&] { return offline->detailErrors().contains(route); }));
    ASSERT_TRUE(waitUntil([&] { return !offline->detailLoadingRoutes().contains(route); }));
    auto* unavailable = qobject_cast<UnavailablePanel*>(page.currentContent());
    ASSERT_NE(unavailable, nullptr);
    EXPECT_EQ(unavailable->description(), offline->detailErrors().value(route));
    EXPECT_FALSE(unavailable->description().isEmpty());
    unavailable->button()->click();
    EXPECT_TRUE(offline->detailLoadingRoutes().contains(route));
    EXPECT_EQ(page.currentContent()->objectName(), u"detailLoadingView"_s);
    ASSERT_TRUE(waitUntil([&] { return !offline->detailLoadingRoutes().contains(route); }));
    EXPECT_EQ(page.currentContent(), unavailable);

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
