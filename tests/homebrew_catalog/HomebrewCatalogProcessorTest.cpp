#include <QCryptographicHash>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CatalogFixtures.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;
using Json = nlohmann::ordered_json;
using Case = HomebrewCatalogProcessingError::Case;

namespace {

const QString validID = u"2024-01-02_03.04"_s;

QByteArray formulaSnapshot()
{
    return snapshotJson(HomebrewCatalogKind::formula,
                        {{u"wget"_s, {}, u"Internet file retriever"_s, {}, 10},
                         {u"curl"_s, {}, u"Get a file from an HTTP server"_s, {}, 20}});
}

QByteArray caskSnapshot()
{
    return snapshotJson(HomebrewCatalogKind::cask, {{u"firefox"_s, u"Mozilla Firefox"_s, u"Web browser"_s, {}, 5}});
}

Json baseManifest()
{
    return Json::parse(manifestJson(validID, formulaSnapshot(), caskSnapshot()).toStdString());
}

QString sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

// What a check should give: success, a decoding error, or a refusal of its case. Every
// unsupported schema in these tables is version 2.
struct Expectation
{
    enum Kind { success, processing, decoding } kind;
    Case processingCase = Case::invalidManifest;
};
const Expectation succeeds {Expectation::success};
const Expectation notDecodable {Expectation::decoding};
Expectation refused(Case processingCase)
{
    return {Expectation::processing, processingCase};
}

void expectOutcome(const HomebrewStatus& status, const Expectation& expected)
{
    const std::string description = status.ok() ? std::string() : status.error().debugDescription().toStdString();
    ASSERT_EQ(status.ok(), expected.kind == Expectation::success) << description;
    if (expected.kind == Expectation::decoding) {
        EXPECT_TRUE(status.error().isDecodingError()) << description;
    } else if (expected.kind == Expectation::processing) {
        const auto* error = status.error().processingError();
        ASSERT_NE(error, nullptr) << description;
        EXPECT_EQ(error->kind, expected.processingCase) << description;
        if (error->kind == Case::unsupportedSchemaVersion) {
            EXPECT_EQ(error->version, 2);
        }
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
        {"valid", [](Json&) {}, succeeds},
        {"schema 2 before anything else",
         [](Json& m) {
             m["schemaVersion"] = 2;
             m["snapshotID"] = "";
             m["formula"]["byteCount"] = 0;
         },
         refused(Case::unsupportedSchemaVersion)},
        {"empty id", [](Json& m) { m["snapshotID"] = ""; }, refused(Case::invalidManifest)},
        {"id with a slash", [](Json& m) { m["snapshotID"] = "a/b"; }, refused(Case::invalidManifest)},
        {"path of another id", [](Json& m) { m["formula"]["path"] = "/v1/catalog/snapshots/other/formula.json"; },
         refused(Case::invalidManifest)},
        {"cask path in the formula artifact", [](Json& m) { m["formula"]["path"] = m["cask"]["path"]; },
         refused(Case::invalidManifest)},
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
         refused(Case::invalidManifest)},
        {"byteCount 0", [](Json& m) { m["formula"]["byteCount"] = 0; }, refused(Case::invalidManifest)},
        {"packageCount 0", [](Json& m) { m["cask"]["packageCount"] = 0; }, refused(Case::invalidManifest)},
        {"schemaVersion as text", [](Json& m) { m["schemaVersion"] = "1"; }, notDecodable},
        {"letters of other scripts in the id",
         [](Json& m) {
             const std::string id = "Sn\xC3\xA4pshot\xE2\x91\xA0";
             m["snapshotID"] = id;
             m["formula"]["path"] = "/v1/catalog/snapshots/" + id + "/formula.json";
             m["cask"]["path"] = "/v1/catalog/snapshots/" + id + "/cask.json";
         },
         succeeds},
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

TEST(HomebrewCatalogProcessorTest, SnapshotChecksRunSizeThenHashThenJson)
{
    const QByteArray good = formulaSnapshot();
    QByteArray oneByteAltered = good;
    oneByteAltered[oneByteAltered.indexOf("wget")] = 'W';
    const QByteArray brokenJson = QByteArray(good).replace("\"packages\":[", "\"packages\":{");
    const QByteArray schemaTwo = snapshotJson(HomebrewCatalogKind::formula, {{u"a"_s}}, 2);
    const QByteArray wrongRowType = QByteArray(good).replace("\"isDisabled\":false", "\"isDisabled\":0");

    // `claimed` is what the manifest promised (size and hash); empty means the bytes themselves.
    struct Row
    {
        const char* name;
        QByteArray bytes;
        HomebrewCatalogKind kind;
        QByteArray claimed;
        qint64 packageCount;
        Expectation expected;
    };
    using K = HomebrewCatalogKind;
    const Row rows[] = {
        {"valid", good, K::formula, {}, 2, succeeds},
        {"one byte short, valid JSON otherwise", good.chopped(1), K::formula, good, 2,
         refused(Case::unexpectedByteCount)},
        {"one byte altered", oneByteAltered, K::formula, good, 2, refused(Case::checksumMismatch)},
        {"broken JSON with a proven hash", brokenJson, K::formula, {}, 2, notDecodable},
        {"schema 2", schemaTwo, K::formula, {}, 1, refused(Case::unsupportedSchemaVersion)},
        {"formula snapshot for the cask artifact", good, K::cask, {}, 2, refused(Case::unexpectedCatalogKind)},
        {"package count differs", good, K::formula, {}, 3, refused(Case::unexpectedPackageCount)},
        {"row field of the wrong type", wrongRowType, K::formula, {}, 2, notDecodable},
    };
    HomebrewCatalogProcessor processor;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray& claimed = row.claimed.isEmpty() ? row.bytes : row.claimed;
        const QString sha = sha256(claimed);
        expectOutcome(processor.validateSnapshot(row.bytes, row.kind, sha, claimed.size(), row.packageCount),
                      row.expected);
        const auto summaries = processor.summaries(row.kind, row.bytes, sha, claimed.size(), row.packageCount);
        expectOutcome(summaries ? homebrewSuccess() : HomebrewStatus(summaries.error()), row.expected);
    }
}

TEST(HomebrewCatalogProcessorTest, SummariesKeepEveryTextExactAndOwnTheirMemory)
{
    // `json` is the text as the snapshot spells it inside quotes.
    struct Text
    {
        const char* name;
        QByteArray json;
        QString expected;
    };
    const Text texts[] = {
        {"plain", "wget", u"wget"_s},
        {"empty", "", u""_s},
        {"outside the basic plane", "\xF0\x9F\x98\x80 grin", u"\U0001F600 grin"_s},
        // The UTF-8 decoder drops a byte order mark that opens a text, and only there.
        {"leading byte order mark", "\xEF\xBB\xBFmark", u"mark"_s},
        {"escapes", R"(line\nbreak \"q\" \u00e9 \ud83d\ude00 \/)", u"line\nbreak \"q\" \u00e9 \U0001F600 /"_s},
        {"longer than any block", QByteArray(40000, 'x'), QString(40000, u'x')},
    };
    // Enough rows that their texts span many blocks, each text in every field.
    QByteArray json = R"({"schemaVersion":1,"kind":"cask","packages":[)";
    QList<const Text*> expectedRows;
    for (int round = 0; round < 150; ++round) {
        for (const Text& text : texts) {
            if (round > 0 && text.json.size() > 1000)
                continue;
            if (!expectedRows.isEmpty())
                json += ',';
            json += R"({"identifier":"id-)" + text.json + R"(","displayName":")" + text.json + R"(","aliases":[")"
                + text.json + R"(","x)" + text.json + R"("],"summary":")" + text.json + R"( s","version":")" + text.json
                + R"(","analytics":{},"isDeprecated":false,"isDisabled":false})";
            expectedRows.append(&text);
        }
    }
    json += "]}";

    // Leave freed memory without a zero in it for the text blocks to reuse, so that a text
    // missing its terminating null shows here rather than reading a lucky zero.
    {
        std::vector<QString> dirt;
        for (int i = 0; i < 64; ++i)
            dirt.emplace_back(16 * 1024, u'Z');
    }
    QList<HomebrewPackageSummary> rows;
    {
        const auto decoded = HomebrewCatalogProcessor().summaries(HomebrewCatalogKind::cask, json, sha256(json),
                                                                  json.size(), expectedRows.size());
        ASSERT_TRUE(decoded.ok()) << decoded.error().debugDescription().toStdString();
        rows = decoded.value();
    }
    ASSERT_EQ(rows.size(), expectedRows.size());
    const auto nullTerminated = [](const QString& s) { return s.constData()[s.size()] == QChar(); };
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const Text& text = *expectedRows[i];
        const HomebrewPackageSummary& row = rows[i];
        SCOPED_TRACE(testing::Message() << text.name << ", row " << i);
        const QString inside = (text.json.startsWith("\xEF\xBB\xBF") ? u"\uFEFF"_s : QString()) + text.expected;
        EXPECT_EQ(row.identifier, u"id-"_s + inside);
        EXPECT_EQ(row.displayName, text.expected);
        EXPECT_EQ(row.aliases, (QStringList {text.expected, u"x"_s + inside}));
        EXPECT_EQ(row.summary, text.expected + u" s"_s);
        EXPECT_EQ(row.version, text.expected);
        for (const QString* field : {&row.identifier, &row.displayName, &row.summary, &row.version, &row.aliases[0]})
            EXPECT_TRUE(nullTerminated(*field));
        if (HasFailure())
            return;
    }

    // Writing to one text leaves its neighbours alone, and a text outlives all the others.
    QString survivor = rows[2].summary;
    QString neighbour = rows[3].summary;
    neighbour.append(u"-changed"_s);
    EXPECT_EQ(rows[3].summary, u"mark s"_s);
    EXPECT_EQ(rows[2].summary, u"\U0001F600 grin s"_s);
    rows.clear();
    neighbour.clear();
    survivor.append(QString(20000, u'y'));
    survivor.prepend(u"<"_s);
    EXPECT_EQ(survivor, u"<\U0001F600 grin s"_s + QString(20000, u'y'));
    EXPECT_TRUE(nullTerminated(survivor));
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
    s.version = u"9.9-searchable-version"_s;
    s.analytics.thirtyDays = thirty;
    return s;
}

} // namespace

TEST(HomebrewCatalogProcessorTest, FilteredMatchesFoldedTextAndSortsStably)
{
    const QList<HomebrewPackageSummary> rows {
        row(u"pkg10"_s, u"Package 10"_s, 5),
        row(u"cafe"_s, u"Caf\u00e9 Tools"_s, std::nullopt, u"Coffee"_s),
        row(u"pkg2"_s, u"Package 2"_s, 5),
        row(u"zero"_s, u"Zero"_s, 0, {}, {u"nought-alias"_s}),
        row(u"big"_s, u"Big"_s, 100),
        row(u"twin-b"_s, u"Twin"_s, std::nullopt),
        row(u"twin-a"_s, u"Twin"_s, std::nullopt),
        row(u"none"_s, u"Absent"_s, std::nullopt),
    };
    // Expected identifiers, in order, separated by blanks.
    struct Row
    {
        const char* name;
        QString query;
        HomebrewSortOption option;
        const char* expected;
    };
    using S = HomebrewSortOption;
    const char* byName = "none big cafe pkg2 pkg10 twin-b twin-a zero";
    const Row cases[] = {
        {"30 days: larger first, 0 above absent, ties by name with numbers by value, equal names keep input order",
         {},
         S::installs30Days,
         "big pkg2 pkg10 zero none cafe twin-b twin-a"},
        {"name ascending", {}, S::nameAscending, byName},
        {"name descending keeps input order for equal names",
         {},
         S::nameDescending,
         "zero twin-b twin-a pkg10 pkg2 cafe big none"},
        {"blank query of spaces and newlines keeps all", u"  \n\t "_s, S::nameAscending, byName},
        {"diacritics and case ignored", u" CAFE "_s, S::nameAscending, "cafe"},
        {"only in an alias", u"nought"_s, S::nameAscending, "zero"},
        {"version is not searched", u"searchable-version"_s, S::nameAscending, ""},
        {"a match may not span two fields", u"zerozero"_s, S::nameAscending, ""},
    };
    HomebrewCatalogProcessor processor;
    const HomebrewCatalogIndex index(rows);
    for (const Row& c : cases) {
        SCOPED_TRACE(c.name);
        const QStringList expected = QString::fromUtf8(c.expected).split(u' ', Qt::SkipEmptyParts);
        EXPECT_EQ(identifiers(processor.filtered(rows, c.query, c.option)), expected);
        EXPECT_EQ(identifiers(processor.filtered(index, c.query, c.option)), expected);
    }
}

TEST(HomebrewCatalogProcessorTest, FilteredStopsWhenAsked)
{
    QList<HomebrewPackageSummary> rows;
    for (int i = 0; i < 5000; ++i)
        rows.append(row(u"p%1"_s.arg(i), u"P %1"_s.arg(i)));
    const HomebrewCatalogIndex index(rows);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(index.filtered(u"p"_s, HomebrewSortOption::nameAscending, stop.get_token()).isEmpty());
    EXPECT_EQ(index.filtered(u"p"_s, HomebrewSortOption::nameAscending).size(), 5000);
}
