#include <QLocale>
#include <QScrollBar>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "homebrew_catalog/views/HomebrewPackageTable.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

HomebrewPackageSummary package(const QString& identifier,
                               const QString& displayName,
                               std::optional<qint64> thirtyDays,
                               bool deprecated = false,
                               bool disabled = false)
{
    HomebrewPackageSummary row;
    row.kind = HomebrewCatalogKind::formula;
    row.identifier = identifier;
    row.displayName = displayName;
    row.summary = u"A summary long enough to be cut in a narrow column"_s;
    row.version = u"1.2.3_1"_s;
    row.analytics.thirtyDays = thirtyDays;
    row.isDeprecated = deprecated;
    row.isDisabled = disabled;
    return row;
}

HomebrewPackageList listOf(QList<HomebrewPackageSummary> rows, std::vector<int> order = {})
{
    if (order.empty())
        for (int i = 0; i < rows.size(); ++i)
            order.push_back(i);
    return {std::make_shared<const QList<HomebrewPackageSummary>>(std::move(rows)), std::move(order)};
}

} // namespace

TEST(HomebrewPackageTableModel, CellsShowWhatEachColumnPromises)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    struct Case
    {
        HomebrewPackageSummary row;
        const char* thirtyDays;
        const char* badge;
        const char* accessible;
    };
    const Case cases[] = {
        {package(u"wget"_s, u"wget"_s, 1234567), "1,234,567", "", "wget"},
        // Zero is a count, absent is not.
        {package(u"zero"_s, u"zero"_s, 0), "0", "", "zero"},
        {package(u"none"_s, u"none"_s, std::nullopt), "\u2014", "", "none"},
        // Disabled wins over deprecated.
        {package(u"gone"_s, u"gone"_s, 5, true, true), "5", "Disabled", "gone, Disabled"},
    };
    QList<HomebrewPackageSummary> rows;
    for (const Case& c : cases)
        rows << c.row;
    HomebrewPackageTableModel model;
    model.setPackages(listOf(rows));
    ASSERT_EQ(model.rowCount(), static_cast<int>(std::size(cases)));
    const int counts = HomebrewPackageTableModel::columnIndex(HomebrewCatalogColumn::thirtyDays);
    for (int row = 0; row < model.rowCount(); ++row) {
        const Case& c = cases[row];
        SCOPED_TRACE(c.row.identifier.toStdString());
        EXPECT_EQ(model.index(row, counts).data().toString(), QString::fromUtf8(c.thirtyDays));
        EXPECT_EQ(model.index(row, 0).data(HomebrewPackageTableModel::BadgeRole).toString(),
                  QString::fromUtf8(c.badge));
        EXPECT_EQ(model.index(row, 0).data(Qt::AccessibleTextRole).toString(), QString::fromUtf8(c.accessible));
    }
    QLocale::setDefault(QLocale::c());
}

TEST(HomebrewPackageTable, SelectingARowOpensItAmongFifteenThousandAndKeepsNothingSelected)
{
    QList<HomebrewPackageSummary> rows;
    std::vector<int> reversed;
    for (int i = 0; i < 15000; ++i) {
        rows << package(u"pkg-%1"_s.arg(i), u"pkg-%1"_s.arg(i), i);
        reversed.insert(reversed.begin(), i);
    }
    HomebrewPackageTable table;
    table.resize(800, 600);
    table.show();
    QSignalSpy opened(&table, &HomebrewPackageTable::openPackage);
    table.setContents(listOf(rows, reversed), {HomebrewCatalogColumn::description}, u"formula:1"_s);
    ASSERT_EQ(table.model()->rowCount(), 15000);
    EXPECT_TRUE(table.isColumnHidden(HomebrewPackageTableModel::columnIndex(HomebrewCatalogColumn::thirtyDays)));

    // The last row on screen order is the first of the catalog.
    table.scrollToBottom();
    table.selectRow(14999);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened.at(0).at(0).value<HomebrewPackageRoute>().identifier, u"pkg-0"_s);
    EXPECT_TRUE(table.selectionModel()->selectedRows().isEmpty());
    const int scrolled = table.verticalScrollBar()->value();
    EXPECT_GT(scrolled, 0);

    // The same identity keeps rows and place; a new one starts over at the top.
    table.setContents(listOf(rows), {}, u"formula:1"_s);
    EXPECT_EQ(table.model()->index(0, 0).data(HomebrewPackageTableModel::IdentifierRole).toString(), u"pkg-14999"_s);
    EXPECT_EQ(table.verticalScrollBar()->value(), scrolled);
    table.setContents(listOf(rows), {}, u"formula:2"_s);
    EXPECT_EQ(table.model()->index(0, 0).data(HomebrewPackageTableModel::IdentifierRole).toString(), u"pkg-0"_s);
    EXPECT_EQ(table.verticalScrollBar()->value(), 0);
}
