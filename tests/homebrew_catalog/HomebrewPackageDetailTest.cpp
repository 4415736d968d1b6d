#include <QFile>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "homebrew_catalog/HomebrewPackageDetail.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;
using Kind = HomebrewCatalogKind;

namespace {

QByteArray readShared(const QString& shared, const QString& relative)
{
    QFile file(shared + u"/homebrew/"_s + relative);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

HomebrewPackageDetail decoded(Kind kind, const QByteArray& json)
{
    auto result = decodeDetail(kind, json);
    EXPECT_TRUE(result.ok()) << (result.ok() ? std::string() : result.error().debugDescription().toStdString());
    return result.ok() ? std::move(result).value() : HomebrewPackageDetail(HomebrewFormula {});
}

QList<HomebrewPackageRoute> routes(std::initializer_list<std::pair<Kind, const char*>> items)
{
    QList<HomebrewPackageRoute> out;
    for (const auto& [kind, name] : items)
        out.append({kind, QString::fromUtf8(name)});
    return out;
}

} // namespace

TEST(HomebrewPackageDetailTest, FormulaWithOnlyANameAndOptionalShapes)
{
    const HomebrewPackageDetail bare = decoded(Kind::formula, "{\"name\":\"tiny\"}");
    EXPECT_TRUE(bare.dependencySections().isEmpty());
    EXPECT_TRUE(bare.requirementLines().isEmpty());
    EXPECT_EQ(bare.currentVersionText(), u"\u2014");
    EXPECT_EQ(bare.installCommand(), u"brew install tiny");
    EXPECT_FALSE(bare.replacementRoute().has_value());

    // `version` is the version text shown; null when the document is refused.
    struct Row
    {
        const char* name;
        QByteArray json;
        const char* version;
    };
    const char* dash = "\u2014";
    const Row rows[] = {
        {"keg_only_reason object", R"({"name":"a","keg_only_reason":{"reason":":provided_by_macos","explanation":""}})",
         dash},
        {"revision 2", R"({"name":"a","versions":{"stable":"1.2","head":null},"revision":2})", "1.2_2"},
        {"revision without a stable version", R"({"name":"a","versions":{"head":"HEAD"},"revision":3})", dash},
        {"missing name", R"({"full_name":"a"})", nullptr},
        {"desc of the wrong type", R"({"name":"a","desc":5})", nullptr},
        {"dependencies with a number", R"({"name":"a","dependencies":["x",1]})", nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto result = decodeDetail(Kind::formula, row.json);
        ASSERT_EQ(result.ok(), row.version != nullptr);
        if (row.version) {
            EXPECT_EQ(result.value().currentVersionText(), QString::fromUtf8(row.version));
        } else {
            EXPECT_TRUE(result.error().isDecodingError());
        }
    }

    const HomebrewPackageDetail reasons
        = decoded(Kind::formula, R"({"name":"a","conflicts_with":["b","c"],"conflicts_with_reasons":[null,"why"]})");
    ASSERT_TRUE(reasons.formula()->conflictsWithReasons.has_value());
    EXPECT_EQ(reasons.formula()->conflictsWithReasons->size(), 2);
    EXPECT_FALSE(reasons.formula()->conflictsWithReasons->at(0).has_value());
}

TEST(HomebrewPackageDetailTest, FormulaSectionsRequirementsAndReplacement)
{
    const HomebrewPackageDetail detail = decoded(Kind::formula, R"({
        "name":"tool", "dependencies":["openssl@3"], "build_dependencies":["pkgconf","cmake"],
        "recommended_dependencies":[], "optional_dependencies":["x11"], "test_dependencies":["pytest"],
        "requirements":[{"name":"xcode","cask":null,"download":null,"version":"14.0","contexts":["build"]},"linux"],
        "deprecated":true, "deprecation_replacement_cask":"tool-app", "deprecation_replacement_formula":"tool2",
        "disabled":false})");
    const auto sections = detail.dependencySections();
    ASSERT_EQ(sections.size(), 4);
    EXPECT_EQ(sections[0], (HomebrewDependencySection {u"Dependencies"_s, routes({{Kind::formula, "openssl@3"}})}));
    EXPECT_EQ(sections[1].title, u"Build Dependencies");
    EXPECT_EQ(sections[1].routes, routes({{Kind::formula, "pkgconf"}, {Kind::formula, "cmake"}}));
    EXPECT_EQ(sections[2].title, u"Optional Dependencies");
    EXPECT_EQ(sections[3].title, u"Test Dependencies");
    EXPECT_EQ(detail.requirementLines(),
              (QStringList {u"contexts: build"_s, u"name: xcode"_s, u"version: 14.0"_s, u"linux"_s}));
    EXPECT_EQ(detail.replacementRoute(), (HomebrewPackageRoute {Kind::formula, u"tool2"_s}));

    struct Row
    {
        const char* name;
        QByteArray json;
        std::optional<HomebrewPackageRoute> expected;
    };
    const Row rows[] = {
        {"disable formula wins", R"({"name":"a","deprecation_replacement_formula":"d","disable_replacement_formula":"x",
          "disable_replacement_cask":"c"})",
         HomebrewPackageRoute {Kind::formula, u"x"_s}},
        {"disable cask over deprecation cask",
         R"({"name":"a","deprecation_replacement_cask":"old","disable_replacement_cask":"new"})",
         HomebrewPackageRoute {Kind::cask, u"new"_s}},
        {"none", R"({"name":"a","deprecation_replacement_formula":null})", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(decoded(Kind::formula, row.json).replacementRoute(), row.expected);
    }
}

TEST(HomebrewPackageDetailTest, CaskDependenciesAndRequirementLines)
{
    const HomebrewPackageDetail macOnly
        = decoded(Kind::cask, R"({"token":"app","depends_on":{"macos":{">=":["10.15"]}}})");
    EXPECT_TRUE(macOnly.dependencySections().isEmpty());
    EXPECT_EQ(macOnly.requirementLines(), QStringList {u"macos: >=: 10.15"_s});
    EXPECT_EQ(macOnly.currentVersionText(), u"\u2014");
    EXPECT_EQ(macOnly.installCommand(), u"brew install --cask app");

    const HomebrewPackageDetail both = decoded(Kind::cask, R"({"token":"suite","version":"8.0,6300",
        "depends_on":{"cask":["helper"],"formula":["wget",{"x":"curl"}],"arch":["arm64","x86_64"]}})");
    const auto sections = both.dependencySections();
    ASSERT_EQ(sections.size(), 2);
    EXPECT_EQ(sections[0].title, u"Formula Dependencies");
    EXPECT_EQ(sections[0].routes, routes({{Kind::formula, "wget"}, {Kind::formula, "curl"}}));
    EXPECT_EQ(sections[1].title, u"Cask Dependencies");
    EXPECT_EQ(sections[1].routes, routes({{Kind::cask, "helper"}}));
    EXPECT_EQ(both.requirementLines(), (QStringList {u"arch: arm64"_s, u"arch: x86_64"_s}));
    EXPECT_EQ(both.currentVersionText(), u"8.0,6300");

    EXPECT_FALSE(decodeDetail(Kind::cask, R"({"token":"a","depends_on":["macos"]})").ok());
    EXPECT_FALSE(decodeDetail(Kind::cask, R"({"token":"a","name":"not a list"})").ok());
}

TEST(HomebrewPackageDetailTest, RealDocumentsDecode)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    const HomebrewPackageDetail abook = decoded(Kind::formula, readShared(shared, u"api/formula/abook.json"_s));
    EXPECT_EQ(abook.currentVersionText(), u"0.6.1");
    EXPECT_EQ(abook.formula()->license,
              QStringLiteral("GPL-2.0-only and GPL-2.0-or-later and GPL-3.0-or-later and "
                             "Public Domain and X11"));

    const HomebrewPackageDetail typora = decoded(Kind::cask, readShared(shared, u"api/cask/typora.json"_s));
    EXPECT_EQ(typora.requirementLines(), QStringList {u"macos: >=: 10.13"_s});
    EXPECT_EQ(typora.currentVersionText(), u"1.4.4");

    const HomebrewPackageDetail everything
        = decoded(Kind::cask, readShared(shared, u"brew-fixtures/cask/everything.json"_s));
    ASSERT_EQ(everything.dependencySections().size(), 1);
    EXPECT_EQ(everything.dependencySections()[0].routes, routes({{Kind::cask, "something"}}));
    EXPECT_EQ(everything.cask()->names, QStringList {u"Everything"_s});

    const auto info = nlohmann::json::parse(readShared(shared, u"api/brew-info-json-v2-installed.json"_s));
    QStringList versions;
    for (const auto& formula : info["formulae"]) {
        const HomebrewPackageDetail detail = decoded(Kind::formula, QByteArray::fromStdString(formula.dump()));
        versions.append(detail.currentVersionText());
        if (detail.formula()->name == u"ruby") {
            ASSERT_TRUE(detail.formula()->kegOnlyReason.has_value());
            EXPECT_EQ(detail.formula()->kegOnlyReason->displayStrings(),
                      (QStringList {u"explanation: "_s, u"reason: :provided_by_macos"_s}));
            EXPECT_EQ(detail.dependencySections()[0].routes,
                      routes({{Kind::formula, "libyaml"}, {Kind::formula, "openssl@3"}}));
        }
    }
    EXPECT_TRUE(versions.contains(u"1.16.2_1"_s)); // cocoapods, revision 1
    EXPECT_TRUE(versions.contains(u"3.5.1"_s));
    for (const auto& cask : info["casks"])
        EXPECT_TRUE(decodeDetail(Kind::cask, QByteArray::fromStdString(cask.dump())).ok());
}
