#include <QStringList>

#include <gtest/gtest.h>

#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

constexpr auto formula = HomebrewCatalogKind::formula;
constexpr auto cask = HomebrewCatalogKind::cask;

HomebrewInstalledPackage raw(HomebrewCatalogKind kind, const QString& identifier, const QString& version)
{
    const QString folder = kind == formula ? u"Cellar"_s : u"Caskroom"_s;
    return {kind, identifier, version, u"/brew/"_s + folder + u'/' + identifier + u'/' + version, std::nullopt};
}

HomebrewPackageSummary summary(HomebrewCatalogKind kind,
                               const QString& identifier,
                               const QString& displayName,
                               const QString& version,
                               const QStringList& aliases = {},
                               const QString& text = {})
{
    HomebrewPackageSummary s;
    s.kind = kind;
    s.identifier = identifier;
    s.displayName = displayName;
    s.version = version;
    s.aliases = aliases;
    s.summary = text;
    return s;
}

QStringList rows(const QList<HomebrewInstalledPackage>& packages)
{
    QStringList out;
    for (const auto& p : packages)
        out.append(p.displayName() + u'|' + p.identifier + u'|' + p.installedVersion);
    return out;
}

// A small installation with the awkward cases: two kept versions, a name shared by a
// formula and a cask, a package the catalog does not know, numbers inside names.
const QList<HomebrewInstalledPackage> kInstalled = {
    raw(formula, u"python@3.12"_s, u"3.12.1"_s),
    raw(formula, u"docker"_s, u"27.0"_s),
    raw(cask, u"docker"_s, u"4.30"_s),
    raw(formula, u"python@3.12"_s, u"3.12.10"_s),
    raw(formula, u"python@3.12"_s, u"3.12.9"_s),
    raw(formula, u"homemade"_s, u"0.1"_s),
    raw(formula, u"lib2"_s, u"1.0"_s),
    raw(formula, u"lib10"_s, u"1.0"_s),
    raw(cask, u"zed"_s, u"0.140"_s),
    raw(cask, u"Alfred"_s, u"5.5"_s),
};

HomebrewPackageSummaries catalog()
{
    const HomebrewPackageSummary summaries[] = {
        summary(formula, u"python@3.12"_s, u"python@3.12"_s, u"3.12.10"_s, {u"python3"_s}),
        summary(formula, u"docker"_s, u"docker"_s, u"27.1"_s, {}, u"Pack, ship and run any application"_s),
        summary(cask, u"docker"_s, u"Docker Desktop"_s, u"4.30"_s, {u"docker-desktop"_s}),
        summary(formula, u"lib2"_s, u"lib2"_s, u"1.0"_s),
        summary(formula, u"lib10"_s, u"lib10"_s, u"1.0"_s),
        summary(cask, u"zed"_s, u"Zed"_s, u""_s),
        // A summary of the other kind never joins.
        summary(cask, u"homemade"_s, u"Homemade Cask"_s, u"9.9"_s),
    };
    HomebrewPackageSummaries result;
    for (const auto& s : summaries)
        result.insert(s.route(), s);
    return result;
}

} // namespace

TEST(HomebrewInstalledPackageProcessorTest, JoinsByKindAndIdentifierThenSortsAndSplits)
{
    const auto lists = HomebrewInstalledPackageProcessor().process(kInstalled, catalog(), QString());
    EXPECT_EQ(rows(lists.formulae),
              (QStringList {
                  u"docker|docker|27.0"_s,
                  u"homemade|homemade|0.1"_s, // unknown: sorts by identifier
                  u"lib2|lib2|1.0"_s, // numbers by value
                  u"lib10|lib10|1.0"_s,
                  u"python@3.12|python@3.12|3.12.10"_s, // newest kept version first
                  u"python@3.12|python@3.12|3.12.9"_s,
                  u"python@3.12|python@3.12|3.12.1"_s,
              }));
    EXPECT_EQ(rows(lists.casks),
              (QStringList {u"Alfred|Alfred|5.5"_s, u"Docker Desktop|docker|4.30"_s, u"Zed|zed|0.140"_s}));
    EXPECT_EQ(lists.formulae[0].catalogSummary->version, u"27.1"_s);
    EXPECT_FALSE(lists.formulae[1].catalogSummary.has_value());
    EXPECT_EQ(lists.casks[1].catalogSummary->version, u"4.30"_s);
}

TEST(HomebrewInstalledPackageProcessorTest, SearchKeepsMatchingRowsOfBothKinds)
{
    struct Case
    {
        QString searchText;
        QStringList formulae;
        QStringList casks;
    };
    const Case cases[] = {
        {u"   \n\t"_s,
         {u"docker"_s, u"homemade"_s, u"lib2"_s, u"lib10"_s, u"python@3.12"_s},
         {u"Alfred"_s, u"docker"_s, u"zed"_s}},
        {u"DOCKER"_s, {u"docker"_s}, {u"docker"_s}},
        {u"  desktop "_s, {}, {u"docker"_s}}, // display name, trimmed
        {u"python3"_s, {u"python@3.12"_s}, {}}, // alias only
        {u"ship"_s, {u"docker"_s}, {}}, // summary
        {u"3.12.9"_s, {u"python@3.12"_s}, {}}, // installed version
        {u"27.1"_s, {}, {}}, // catalog version is not searched
        {u"homemade cask"_s, {}, {}}, // other kind's summary never joined
        {u"ALFRÉD"_s, {}, {u"Alfred"_s}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.searchText.toStdString());
        const auto lists = HomebrewInstalledPackageProcessor().process(kInstalled, catalog(), c.searchText);
        QStringList formulae;
        QStringList casks;
        for (const auto& p : lists.formulae)
            if (!formulae.contains(p.identifier))
                formulae.append(p.identifier);
        for (const auto& p : lists.casks)
            casks.append(p.identifier);
        EXPECT_EQ(formulae, c.formulae);
        EXPECT_EQ(casks, c.casks);
    }

    std::stop_source stop;
    stop.request_stop();
    const auto stopped = HomebrewInstalledPackageProcessor().process(kInstalled, catalog(), {}, stop.get_token());
    EXPECT_TRUE(stopped.formulae.isEmpty() && stopped.casks.isEmpty());
}
