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

    // Wrongly typed fields refuse the whole document.
    for (const char* json :
         {R"({"full_name":"a"})", R"({"name":"a","desc":5})", R"({"name":"a","dependencies":["x",1]})"})
        EXPECT_TRUE(decodeDetail(Kind::formula, json).error().isDecodingError()) << json;
    EXPECT_FALSE(decodeDetail(Kind::cask, R"({"token":"a","depends_on":["macos"]})").ok());
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
