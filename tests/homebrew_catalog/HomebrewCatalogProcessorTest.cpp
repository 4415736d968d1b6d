#include <QCryptographicHash>
#include <functional>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CatalogFixtures.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"

using namespace quillbay;
using namespace quillbay::test;
using Json = nlohmann::ordered_json;
using Case = HomebrewCatalogProcessingError::Case;

namespace {

const QString validID = QStringLiteral("2024-01-02_03.04");

QByteArray formulaSnapshot()
{
    return snapshotJson(HomebrewCatalogKind::formula,
                        {{QStringLiteral("wget"), {}, QStringLiteral("Internet file retriever"), {}, 10},
                         {QStringLiteral("curl"), {}, QStringLiteral("Get a file from an HTTP server"), {}, 20}});
}

QByteArray caskSnapshot()
{
    return snapshotJson(
        HomebrewCatalogKind::cask,
        {{QStringLiteral("firefox"), QStringLiteral("Mozilla Firefox"), QStringLiteral("Web browser"), {}, 5}});
}

Json baseManifest()
{
    return Json::parse(manifestJson(validID, formulaSnapshot(), caskSnapshot()).toStdString());
}

QString sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

// What a check should give: success, a processing case, or a decoding error.
struct Expectation
{
    enum Kind { success, processing, decoding } kind;
    Case processingCase = Case::invalidManifest;
    qint64 version = 0;
};

void expectOutcome(const HomebrewStatus& status, const Expectation& expected)
{
    switch (expected.kind) {
    case Expectation::success:
        EXPECT_TRUE(status.ok()) << status.error().debugDescription().toStdString();
        return;
    case Expectation::processing:
        ASSERT_FALSE(status.ok());
        ASSERT_NE(status.error().processingError(), nullptr) << status.error().debugDescription().toStdString();
        EXPECT_EQ(status.error().processingError()->kind, expected.processingCase)
            << status.error().debugDescription().toStdString();
        if (expected.processingCase == Case::unsupportedSchemaVersion) {
            EXPECT_EQ(status.error().processingError()->version, expected.version);
        }
        return;
    case Expectation::decoding:
        ASSERT_FALSE(status.ok());
        EXPECT_TRUE(status.error().isDecodingError()) << status.error().debugDescription().toStdString();
        return;
    }
}

HomebrewStatus statusOf(const HomebrewResult<HomebrewCatalogManifest>& result)
{
    if (!result)
        return result.error();
    return homebrewSuccess();
}

} // namespace

TEST(HomebrewCatalogProcessorTest, ManifestChecksRunInOrderAndRefuseEveryMalformedField)
{
    struct Row
    {
        const char* name;
        std::function<void(Json&)> change;
        Expectation expected;
    };
    const QString sha = QString::fromStdString(baseManifest()["formula"]["sha256"].get<std::string>());
    const Row rows[] = {
        {"valid", [](Json&) {}, {Expectation::success}},
        {"schema 2 before anything else",
         [](Json& m) {
             m["schemaVersion"] = 2;
             m["snapshotID"] = "";
             m["formula"]["byteCount"] = 0;
         },
         {Expectation::processing, Case::unsupportedSchemaVersion, 2}},
        {"empty id", [](Json& m) { m["snapshotID"] = ""; }, {Expectation::processing, Case::invalidManifest}},
        {"id with a slash", [](Json& m) { m["snapshotID"] = "a/b"; }, {Expectation::processing, Case::invalidManifest}},
        {"id with a blank", [](Json& m) { m["snapshotID"] = "a b"; }, {Expectation::processing, Case::invalidManifest}},
        {"id with a percent",
         [](Json& m) { m["snapshotID"] = "a%2F"; },
         {Expectation::processing, Case::invalidManifest}},
        {"path of another id",
         [](Json& m) { m["formula"]["path"] = "/v1/catalog/snapshots/other/formula.json"; },
         {Expectation::processing, Case::invalidManifest}},
        {"cask path in the formula artifact",
         [](Json& m) { m["formula"]["path"] = m["cask"]["path"]; },
         {Expectation::processing, Case::invalidManifest}},
        {"sha256 with an upper-case digit",
         [sha](Json& m) {
             std::string s = sha.toStdString();
             for (char& c : s)
                 if (c >= 'a' && c <= 'f') {
                     c = static_cast<char>(c - 'a' + 'A');
                     break;
                 }
             m["cask"]["sha256"] = s;
         },
         {Expectation::processing, Case::invalidManifest}},
        {"sha256 of 63 digits",
         [sha](Json& m) { m["formula"]["sha256"] = sha.left(63).toStdString(); },
         {Expectation::processing, Case::invalidManifest}},
        {"byteCount 0",
         [](Json& m) { m["formula"]["byteCount"] = 0; },
         {Expectation::processing, Case::invalidManifest}},
        {"packageCount 0",
         [](Json& m) { m["cask"]["packageCount"] = 0; },
         {Expectation::processing, Case::invalidManifest}},
        {"packageCount negative",
         [](Json& m) { m["cask"]["packageCount"] = -1; },
         {Expectation::processing, Case::invalidManifest}},
        {"missing source", [](Json& m) { m.erase("source"); }, {Expectation::decoding}},
        {"schemaVersion as text", [](Json& m) { m["schemaVersion"] = "1"; }, {Expectation::decoding}},
        {"byteCount as a fraction", [](Json& m) { m["formula"]["byteCount"] = 1.5; }, {Expectation::decoding}},
        {"unknown keys are ignored",
         [](Json& m) {
             m["extra"] = Json {{"a", 1}};
         },
         {Expectation::success}},
        {"letters of other scripts in the id",
         [](Json& m) {
             const std::string id = "Sn\xC3\xA4pshot\xE2\x91\xA0";
             m["snapshotID"] = id;
             m["formula"]["path"] = "/v1/catalog/snapshots/" + id + "/formula.json";
             m["cask"]["path"] = "/v1/catalog/snapshots/" + id + "/cask.json";
         },
         {Expectation::success}},
    };
    HomebrewCatalogProcessor processor;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Json manifest = baseManifest();
        row.change(manifest);
        expectOutcome(statusOf(processor.validatedManifest(QByteArray::fromStdString(manifest.dump()))), row.expected);
    }
    EXPECT_FALSE(processor.validatedManifest("{\"schemaVersion\": 1").ok());
}

TEST(HomebrewCatalogProcessorTest, ValidatedManifestCarriesTheArtifacts)
{
    const auto manifest
        = HomebrewCatalogProcessor().validatedManifest(manifestJson(validID, formulaSnapshot(), caskSnapshot()));
    ASSERT_TRUE(manifest.ok());
    EXPECT_EQ(manifest.value().snapshotID, validID);
    EXPECT_EQ(manifest.value().formula.byteCount, formulaSnapshot().size());
    EXPECT_EQ(manifest.value().cask.packageCount, 1);
    EXPECT_EQ(manifest.value().formula.sha256, sha256(formulaSnapshot()));
}

TEST(HomebrewCatalogProcessorTest, SnapshotChecksRunSizeThenHashThenJson)
{
    const QByteArray good = formulaSnapshot();
    QByteArray oneByteAltered = good;
    oneByteAltered[oneByteAltered.indexOf("wget")] = 'W';
    const QByteArray brokenJson = QByteArray(good).replace("\"packages\":[", "\"packages\":{");
    const QByteArray schemaTwo = snapshotJson(HomebrewCatalogKind::formula, {{QStringLiteral("a")}}, 2);
    const QByteArray caskBytes = caskSnapshot();
    const QByteArray wrongRowType = QByteArray(good).replace("\"isDisabled\":false", "\"isDisabled\":0");
    const QByteArray missingAnalytics = QByteArray(good).replace("\"analytics\":{\"thirtyDays\":10},", "");

    struct Row
    {
        const char* name;
        QByteArray bytes;
        HomebrewCatalogKind kind;
        QString sha;
        qint64 byteCount;
        qint64 packageCount;
        Expectation expected;
    };
    const Row rows[] = {
        {"valid", good, HomebrewCatalogKind::formula, sha256(good), good.size(), 2, {Expectation::success}},
        {"one byte short, valid JSON otherwise",
         good.chopped(1),
         HomebrewCatalogKind::formula,
         sha256(good),
         good.size(),
         2,
         {Expectation::processing, Case::unexpectedByteCount}},
        {"one byte altered",
         oneByteAltered,
         HomebrewCatalogKind::formula,
         sha256(good),
         good.size(),
         2,
         {Expectation::processing, Case::checksumMismatch}},
        {"hash compared as exact text",
         good,
         HomebrewCatalogKind::formula,
         sha256(good).toUpper(),
         good.size(),
         2,
         {Expectation::processing, Case::checksumMismatch}},
        {"broken JSON with a proven hash",
         brokenJson,
         HomebrewCatalogKind::formula,
         sha256(brokenJson),
         brokenJson.size(),
         2,
         {Expectation::decoding}},
        {"schema 2",
         schemaTwo,
         HomebrewCatalogKind::formula,
         sha256(schemaTwo),
         schemaTwo.size(),
         1,
         {Expectation::processing, Case::unsupportedSchemaVersion, 2}},
        {"formula snapshot for the cask artifact",
         good,
         HomebrewCatalogKind::cask,
         sha256(good),
         good.size(),
         2,
         {Expectation::processing, Case::unexpectedCatalogKind}},
        {"cask snapshot expected as formula",
         caskBytes,
         HomebrewCatalogKind::formula,
         sha256(caskBytes),
         caskBytes.size(),
         1,
         {Expectation::processing, Case::unexpectedCatalogKind}},
        {"package count differs",
         good,
         HomebrewCatalogKind::formula,
         sha256(good),
         good.size(),
         3,
         {Expectation::processing, Case::unexpectedPackageCount}},
        {"row field of the wrong type",
         wrongRowType,
         HomebrewCatalogKind::formula,
         sha256(wrongRowType),
         wrongRowType.size(),
         2,
         {Expectation::decoding}},
        {"row without analytics",
         missingAnalytics,
         HomebrewCatalogKind::formula,
         sha256(missingAnalytics),
         missingAnalytics.size(),
         2,
         {Expectation::decoding}},
    };
    HomebrewCatalogProcessor processor;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        expectOutcome(processor.validateSnapshot(row.bytes, row.kind, row.sha, row.byteCount, row.packageCount),
                      row.expected);
        const auto summaries = processor.summaries(row.kind, row.bytes, row.sha, row.byteCount, row.packageCount);
        expectOutcome(summaries ? homebrewSuccess() : HomebrewStatus(summaries.error()), row.expected);
    }
}

TEST(HomebrewCatalogProcessorTest, SummariesKeepSnapshotOrderDuplicatesAndAbsentCounts)
{
    const QByteArray bytes = snapshotJson(
        HomebrewCatalogKind::cask,
        {{QStringLiteral("zed"), QStringLiteral("Zed"), QStringLiteral("Editor"), {QStringLiteral("zed-preview")}, 0},
         {QStringLiteral("alpha"), QStringLiteral("Alpha"), QStringLiteral("  padded  "), {}},
         {QStringLiteral("zed"), QStringLiteral("Zed again"), {}, {}, 3, 4, 5, QStringLiteral("2"), true, true}});
    const auto rows
        = HomebrewCatalogProcessor().summaries(HomebrewCatalogKind::cask, bytes, sha256(bytes), bytes.size(), 3);
    ASSERT_TRUE(rows.ok());
    const auto& list = rows.value();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].identifier, u"zed");
    EXPECT_EQ(list[0].kind, HomebrewCatalogKind::cask);
    EXPECT_EQ(list[0].aliases, QStringList {QStringLiteral("zed-preview")});
    EXPECT_EQ(list[0].analytics.thirtyDays, 0);
    EXPECT_FALSE(list[0].analytics.ninetyDays.has_value());
    EXPECT_EQ(list[1].summary, u"  padded  ");
    EXPECT_FALSE(list[1].analytics.thirtyDays.has_value());
    EXPECT_EQ(list[2].displayName, u"Zed again");
    EXPECT_TRUE(list[2].isDeprecated && list[2].isDisabled);
    EXPECT_EQ(list[2].analytics.threeHundredSixtyFiveDays, 5);
    EXPECT_EQ(list[0].id(), u"cask:zed");
}

namespace {

HomebrewPackageSummary row(const QString& identifier,
                           const QString& displayName,
                           std::optional<qint64> thirty = std::nullopt,
                           const QString& summary = {},
                           const QStringList& aliases = {})
{
    HomebrewPackageSummary s;
    s.identifier = identifier;
    s.displayName = displayName;
    s.summary = summary;
    s.aliases = aliases;
    s.version = QStringLiteral("9.9-searchable-version");
    s.analytics.thirtyDays = thirty;
    return s;
}

template <typename Rows> QStringList identifiers(const Rows& rows)
{
    QStringList out;
    for (const auto& r : rows)
        out.append(r.identifier);
    return out;
}

} // namespace

TEST(HomebrewCatalogProcessorTest, FilteredMatchesFoldedTextAndSortsStably)
{
    const QList<HomebrewPackageSummary> rows {
        row(QStringLiteral("pkg10"), QStringLiteral("Package 10"), 5),
        row(QStringLiteral("cafe"), QStringLiteral("Caf\u00e9 Tools"), std::nullopt, QStringLiteral("Coffee")),
        row(QStringLiteral("pkg2"), QStringLiteral("Package 2"), 5),
        row(QStringLiteral("zero"), QStringLiteral("Zero"), 0, {}, {QStringLiteral("nought-alias")}),
        row(QStringLiteral("big"), QStringLiteral("Big"), 100),
        row(QStringLiteral("twin-b"), QStringLiteral("Twin"), std::nullopt),
        row(QStringLiteral("twin-a"), QStringLiteral("Twin"), std::nullopt),
        row(QStringLiteral("none"), QStringLiteral("Absent"), std::nullopt),
    };
    struct Row
    {
        const char* name;
        QString query;
        HomebrewSortOption option;
        std::vector<const char*> expected;
    };
    const Row cases[] = {
        {"30 days: larger first, 0 above absent, ties by name with numbers by value, equal names keep input order",
         {},
         HomebrewSortOption::installs30Days,
         {"big", "pkg2", "pkg10", "zero", "none", "cafe", "twin-b", "twin-a"}},
        {"name ascending",
         {},
         HomebrewSortOption::nameAscending,
         {"none", "big", "cafe", "pkg2", "pkg10", "twin-b", "twin-a", "zero"}},
        {"name descending keeps input order for equal names",
         {},
         HomebrewSortOption::nameDescending,
         {"zero", "twin-b", "twin-a", "pkg10", "pkg2", "cafe", "big", "none"}},
        {"90 days all absent: name order",
         {},
         HomebrewSortOption::installs90Days,
         {"none", "big", "cafe", "pkg2", "pkg10", "twin-b", "twin-a", "zero"}},
        {"blank query of spaces and newlines keeps all",
         QStringLiteral("  \n\t "),
         HomebrewSortOption::nameAscending,
         {"none", "big", "cafe", "pkg2", "pkg10", "twin-b", "twin-a", "zero"}},
        {"diacritics and case ignored", QStringLiteral(" CAFE "), HomebrewSortOption::nameAscending, {"cafe"}},
        {"accented query finds plain text", QStringLiteral("c\u00f6ffee"), HomebrewSortOption::nameAscending, {"cafe"}},
        {"only in an alias", QStringLiteral("nought"), HomebrewSortOption::nameAscending, {"zero"}},
        {"version is not searched", QStringLiteral("searchable-version"), HomebrewSortOption::nameAscending, {}},
        {"identifier match", QStringLiteral("twin-a"), HomebrewSortOption::installs30Days, {"twin-a"}},
        {"a match may not span two fields", QStringLiteral("zerozero"), HomebrewSortOption::nameAscending, {}},
        {"results sorted by the option",
         QStringLiteral("package"),
         HomebrewSortOption::nameDescending,
         {"pkg10", "pkg2"}},
    };
    HomebrewCatalogProcessor processor;
    const HomebrewCatalogIndex index(rows);
    for (const Row& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(identifiers(processor.filtered(rows, c.query, c.option)), strings(c.expected));
        EXPECT_EQ(identifiers(processor.filtered(index, c.query, c.option)), strings(c.expected));
    }
}

TEST(HomebrewCatalogProcessorTest, FilteredStopsWhenAsked)
{
    QList<HomebrewPackageSummary> rows;
    for (int i = 0; i < 5000; ++i)
        rows.append(row(QStringLiteral("p%1").arg(i), QStringLiteral("P %1").arg(i)));
    const HomebrewCatalogIndex index(rows);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(index.filtered(QStringLiteral("p"), HomebrewSortOption::nameAscending, stop.get_token()).isEmpty());
    EXPECT_EQ(index.filtered(QStringLiteral("p"), HomebrewSortOption::nameAscending).size(), 5000);
}
