#include <QProcess>
#include <QStringList>

#include <gtest/gtest.h>

#include "homebrew_installed/HomebrewInstalledPackage.h"
#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

constexpr auto formula = HomebrewCatalogKind::formula;
constexpr auto cask = HomebrewCatalogKind::cask;

QStringList rows(const QList<HomebrewInstalledPackage>& packages)
{
    QStringList out;
    for (const auto& p : packages)
        out.append(p.displayName() + u'|' + p.identifier + u'|' + p.installedVersion);
    return out;
}

} // namespace

TEST(HomebrewInstalledPackageProcessorTest, JoinsByKindAndIdentifierThenSortsAndSplits)
{
    // The awkward cases: kept versions, a name shared by a formula and a cask, a package the
    // catalog does not know, numbers inside names.
    QList<HomebrewInstalledPackage> installed;
    for (const auto& [kind, identifier, version] : {std::tuple {formula, u"python@3.12"_s, u"3.12.1"_s},
                                                    {formula, u"docker"_s, u"27.0"_s},
                                                    {cask, u"docker"_s, u"4.30"_s},
                                                    {formula, u"python@3.12"_s, u"3.12.10"_s},
                                                    {formula, u"python@3.12"_s, u"3.12.9"_s},
                                                    {formula, u"homemade"_s, u"0.1"_s},
                                                    {formula, u"lib2"_s, u"1.0"_s},
                                                    {formula, u"lib10"_s, u"1.0"_s},
                                                    {cask, u"zed"_s, u"0.140"_s},
                                                    {cask, u"Alfred"_s, u"5.5"_s}})
        installed.append({kind, identifier, version, u"/brew/"_s + identifier + u'/' + version, std::nullopt});
    HomebrewPackageSummaries catalog;
    for (const auto& [kind, identifier, name, version] :
         {std::tuple {formula, u"python@3.12"_s, u"python@3.12"_s, u"3.12.10"_s},
          {formula, u"docker"_s, u"docker"_s, u"27.1"_s},
          {cask, u"docker"_s, u"Docker Desktop"_s, u"4.30"_s},
          {formula, u"lib2"_s, u"lib2"_s, u"1.0"_s},
          {formula, u"lib10"_s, u"lib10"_s, u"1.0"_s},
          {cask, u"zed"_s, u"Zed"_s, u""_s},
          // A summary of the other kind never joins.
          {cask, u"homemade"_s, u"Homemade Cask"_s, u"9.9"_s}}) {
        HomebrewPackageSummary& s = catalog[HomebrewPackageRoute {kind, identifier}];
        std::tie(s.kind, s.identifier, s.displayName, s.version) = std::tie(kind, identifier, name, version);
    }

    const auto lists = HomebrewInstalledPackageProcessor().process(installed, catalog, QString());
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
    // A summary with an empty version cannot say whether the installed one is outdated.
    ASSERT_TRUE(lists.casks[2].catalogSummary.has_value());
    EXPECT_EQ(lists.casks[2].isPossiblyOutdated(), std::nullopt);
}

TEST(HomebrewInstalledPackageTest, ShellQuotingSurvivesHostileNames)
{
    const std::pair<QString, QString> cases[] = {
        {u""_s, u"''"_s},
        {u"it's"_s, u"'it'\"'\"'s'"_s},
        {u"$(rm -rf ~)"_s, u"'$(rm -rf ~)'"_s},
        {u"`id`;x&y|*"_s, u"'`id`;x&y|*'"_s},
        {u"new\nline"_s, u"'new\nline'"_s},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text.toStdString());
        const QString quoted = shellQuoted(text);
        EXPECT_EQ(quoted, expected);
        // Whatever the text, a POSIX shell reads back exactly one word equal to it.
        QProcess shell;
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"printf '%s' "_s + quoted});
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(QString::fromUtf8(shell.readAllStandardOutput()), text);
    }
    const QString broken = u"pkg"_s + QChar(0xD800); // unpaired surrogate
    EXPECT_EQ(shellQuoted(broken), u'\'' + broken + u'\'');
}
