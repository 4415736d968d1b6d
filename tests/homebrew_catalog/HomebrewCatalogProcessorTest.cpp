#include <QCryptographicHash>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "homebrew_catalog/HomebrewCatalogProcessor.h"

using namespace quillbay;
using namespace Qt::StringLiterals;
using Json = nlohmann::ordered_json;
using Case = HomebrewCatalogProcessingError::Case;

namespace {

QString sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QByteArray snapshotJson(HomebrewCatalogKind kind, const std::vector<std::string>& identifiers, int schemaVersion = 1)
{
    Json rows = Json::array();
    for (const std::string& id : identifiers)
        rows.push_back(Json {{"identifier", id},
                             {"displayName", id},
                             {"aliases", Json::array()},
                             {"summary", "s"},
                             {"version", "1.0"},
                             {"analytics", Json {{"thirtyDays", 10}}},
                             {"isDeprecated", false},
                             {"isDisabled", false}});
    const Json snapshot {{"schemaVersion", schemaVersion}, {"kind", rawValue(kind).toStdString()}, {"packages", rows}};
    return QByteArray::fromStdString(snapshot.dump());
}

QByteArray formulaSnapshot()
{
    return snapshotJson(HomebrewCatalogKind::formula, {"wget", "curl"});
}

// A manifest whose artifacts describe the two snapshots above exactly.
Json baseManifest()
{
    const std::string id = "2024-01-02_03.04";
    const auto artifact = [&](HomebrewCatalogKind kind, const QByteArray& bytes, int count) {
        return Json {{"path", "/v1/catalog/snapshots/" + id + "/" + rawValue(kind).toStdString() + ".json"},
                     {"sha256", sha256(bytes).toStdString()},
                     {"byteCount", bytes.size()},
                     {"packageCount", count}};
    };
    return Json {
        {"schemaVersion", 1},
        {"snapshotID", id},
        {"generatedAt", "2025-01-02T03:04:05Z"},
        {"source", Json {{"name", "test"}, {"url", "https://example.invalid/"}}},
        {"formula", artifact(HomebrewCatalogKind::formula, formulaSnapshot(), 2)},
        {"cask", artifact(HomebrewCatalogKind::cask, snapshotJson(HomebrewCatalogKind::cask, {"firefox"}), 1)}};
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
        {"packageCount 0", [](Json& m) { m["cask"]["packageCount"] = 0; }, refused(Case::invalidManifest)},
        {"upper-case sha256",
         [](Json& m) {
             m["cask"]["sha256"]
                 = QByteArray::fromStdString(m["cask"]["sha256"].get<std::string>()).toUpper().toStdString();
         },
         refused(Case::invalidManifest)},
        {"schemaVersion as text", [](Json& m) { m["schemaVersion"] = "1"; }, notDecodable},
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
    const QByteArray schemaTwo = snapshotJson(HomebrewCatalogKind::formula, {"a"}, 2);
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

    // A text outlives all the others.
    QString survivor = rows[0].summary;
    rows.clear();
    survivor.append(QString(20000, u'y'));
    survivor.prepend(u"<"_s);
    EXPECT_EQ(survivor, u"<\U0001F600 grin s"_s + QString(20000, u'y'));
    EXPECT_TRUE(nullTerminated(survivor));
}
