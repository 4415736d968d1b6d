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

HomebrewInstalledPackage raw(HomebrewCatalogKind kind, const QString& identifier, const QString& version)
{
    const QString folder = kind == formula ? u"Cellar"_s : u"Caskroom"_s;
    return {kind, identifier, version, u"/brew/"_s + folder + u'/' + identifier + u'/' + version, std::nullopt};
}

HomebrewPackageSummary
summary(HomebrewCatalogKind kind, const QString& identifier, const QString& displayName, const QString& version)
{
    HomebrewPackageSummary s;
    s.kind = kind;
    s.identifier = identifier;
    s.displayName = displayName;
    s.version = version;
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
        summary(formula, u"python@3.12"_s, u"python@3.12"_s, u"3.12.10"_s),
        summary(formula, u"docker"_s, u"docker"_s, u"27.1"_s),
        summary(cask, u"docker"_s, u"Docker Desktop"_s, u"4.30"_s),
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
    // A summary with an empty version cannot say whether the installed one is outdated.
    ASSERT_TRUE(lists.casks[2].catalogSummary.has_value());
    EXPECT_EQ(lists.casks[2].isPossiblyOutdated(), std::nullopt);
}

TEST(HomebrewInstalledPackageTest, ShellQuotingSurvivesHostileNames)
{
    struct Case
    {
        QString text;
        QString expected;
    };
    const Case cases[] = {
        {u"python@3.12"_s, u"python@3.12"_s}, {u""_s, u"''"_s},
        {u"it's"_s, u"'it'\"'\"'s'"_s},       {u"$(rm -rf ~)"_s, u"'$(rm -rf ~)'"_s},
        {u"`id`;x&y|*"_s, u"'`id`;x&y|*'"_s}, {u"new\nline"_s, u"'new\nline'"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        const QString quoted = shellQuoted(c.text);
        EXPECT_EQ(quoted, c.expected);
        // Whatever the text, a POSIX shell reads back exactly one word equal to it.
        QProcess shell;
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"printf '%s' "_s + quoted});
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(QString::fromUtf8(shell.readAllStandardOutput()), c.text);
    }
    const QString broken = u"pkg"_s + QChar(0xD800); // unpaired surrogate
    EXPECT_EQ(shellQuoted(broken), u'\'' + broken + u'\'');
}
