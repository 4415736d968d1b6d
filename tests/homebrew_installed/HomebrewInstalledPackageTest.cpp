#include <QProcess>

#include <gtest/gtest.h>

#include "homebrew_installed/HomebrewInstalledPackage.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

HomebrewPackageSummary summaryOf(HomebrewCatalogKind kind, const QString& identifier, const QString& version)
{
    HomebrewPackageSummary summary;
    summary.kind = kind;
    summary.identifier = identifier;
    summary.displayName = identifier;
    summary.version = version;
    return summary;
}

HomebrewInstalledPackage installed(HomebrewCatalogKind kind, const QString& identifier, const QString& version)
{
    return {kind, identifier, version, u"/opt/homebrew/Cellar/"_s + identifier + u'/' + version, std::nullopt};
}

// What a POSIX shell makes of the word: the single argument it passes on.
QString shellReading(const QString& word)
{
    QProcess shell;
    shell.start(u"/bin/sh"_s, {u"-c"_s, u"printf '%s' "_s + word});
    shell.waitForFinished();
    return QString::fromUtf8(shell.readAllStandardOutput());
}

} // namespace

TEST(HomebrewInstalledPackageTest, IsPossiblyOutdatedComparesVersionTextsOnly)
{
    struct Case
    {
        const char* name;
        std::optional<QString> catalogVersion; // absent: no summary at all
        QString installedVersion;
        std::optional<bool> expected;
    };
    const Case cases[] = {
        {"unknown to the catalog", std::nullopt, u"1.0"_s, std::nullopt},
        {"catalog version empty", u""_s, u"1.0"_s, std::nullopt},
        {"same text", u"1.2.3"_s, u"1.2.3"_s, false},
        {"catalog has a revision", u"1.2.3_1"_s, u"1.2.3"_s, true},
        {"installed is newer", u"1.2.3"_s, u"1.3.0"_s, true},
        {"spelled differently", u"1.2"_s, u"1.2.0"_s, true},
        {"case differs", u"1.0-RC1"_s, u"1.0-rc1"_s, true},
        {"installed empty name", u"1.0"_s, u""_s, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HomebrewInstalledPackage package = installed(HomebrewCatalogKind::formula, u"wget"_s, c.installedVersion);
        if (c.catalogVersion)
            package.catalogSummary = summaryOf(HomebrewCatalogKind::formula, u"wget"_s, *c.catalogVersion);
        EXPECT_EQ(package.isPossiblyOutdated(), c.expected);
    }
}

TEST(HomebrewInstalledPackageTest, ShellQuotingSurvivesHostileNames)
{
    struct Case
    {
        QString text;
        QString expected;
    };
    const Case cases[] = {
        {u"wget"_s, u"wget"_s},
        {u"python@3.12"_s, u"python@3.12"_s},
        {u"a-b_c+d=e:f,g./h%i"_s, u"a-b_c+d=e:f,g./h%i"_s},
        {u"café"_s, u"café"_s},
        {u"日本語"_s, u"日本語"_s},
        {u"e\u0301"_s, u"e\u0301"_s}, // combining mark
        {u""_s, u"''"_s},
        {u"it's"_s, u"'it'\"'\"'s'"_s},
        {u"'"_s, u"''\"'\"''"_s},
        {u"a b"_s, u"'a b'"_s},
        {u"$(rm -rf ~)"_s, u"'$(rm -rf ~)'"_s},
        {u"`id`"_s, u"'`id`'"_s},
        {u"x;y&z|w"_s, u"'x;y&z|w'"_s},
        {u"new\nline"_s, u"'new\nline'"_s},
        {u"tab\there"_s, u"'tab\there'"_s},
        {u"*"_s, u"'*'"_s},
        {u"~user"_s, u"'~user'"_s},
        {u"!history"_s, u"'!history'"_s},
        {u"back\\slash"_s, u"'back\\slash'"_s},
        {u"quote\"d"_s, u"'quote\"d'"_s},
        {u"non\u00a0breaking"_s, u"'non\u00a0breaking'"_s},
        {u"emoji😀"_s, u"'emoji😀'"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        const QString quoted = shellQuoted(c.text);
        EXPECT_EQ(quoted, c.expected);
        // Whatever the text, the shell reads back exactly one word equal to it.
        EXPECT_EQ(shellReading(quoted), c.text);
    }
}

TEST(HomebrewInstalledPackageTest, UnpairedSurrogateIsQuoted)
{
    const QString broken = u"pkg"_s + QChar(0xD800);
    EXPECT_EQ(shellQuoted(broken), u'\'' + broken + u'\'');
}

TEST(HomebrewInstalledPackageTest, CommandsNameTheKindAndQuoteTheIdentifier)
{
    const HomebrewInstalledPackage formula = installed(HomebrewCatalogKind::formula, u"python@3.12"_s, u"3.12.1"_s);
    EXPECT_EQ(formula.upgradeCommand(), u"brew upgrade --formula python@3.12"_s);
    EXPECT_EQ(formula.uninstallCommand(), u"brew uninstall --formula python@3.12"_s);

    const HomebrewInstalledPackage cask = installed(HomebrewCatalogKind::cask, u"bob's app"_s, u"2.0"_s);
    EXPECT_EQ(cask.upgradeCommand(), u"brew upgrade --cask 'bob'\"'\"'s app'"_s);
    EXPECT_EQ(cask.uninstallCommand(), u"brew uninstall --cask 'bob'\"'\"'s app'"_s);
}

TEST(HomebrewInstalledPackageTest, IdentityAndNameDependOnTheSummary)
{
    HomebrewInstalledPackage package = installed(HomebrewCatalogKind::cask, u"firefox"_s, u"128.0"_s);
    EXPECT_EQ(package.id(), u"cask:firefox:128.0:/opt/homebrew/Cellar/firefox/128.0"_s);
    EXPECT_EQ(package.displayName(), u"firefox"_s);
    package.catalogSummary = summaryOf(HomebrewCatalogKind::cask, u"firefox"_s, u"129.0"_s);
    package.catalogSummary->displayName = u"Mozilla Firefox"_s;
    EXPECT_EQ(package.displayName(), u"Mozilla Firefox"_s);
    // Two versions of one package, or one version in two places, are distinct rows.
    HomebrewInstalledPackage other = package;
    other.installationURL = u"/usr/local/Caskroom/firefox/128.0"_s;
    EXPECT_NE(package.id(), other.id());
    EXPECT_EQ(package.route(), other.route());
}

TEST(HomebrewInstalledPackageTest, MatchesSearchesNamesVersionsSummaryAndAliases)
{
    HomebrewInstalledPackage joined = installed(HomebrewCatalogKind::formula, u"node"_s, u"22.3.0"_s);
    joined.catalogSummary = summaryOf(HomebrewCatalogKind::formula, u"node"_s, u"22.4.0"_s);
    joined.catalogSummary->displayName = u"Node.js Runtime"_s;
    joined.catalogSummary->summary = u"Platform built on V8 for network applications"_s;
    joined.catalogSummary->aliases = {u"nodejs"_s, u"node@22"_s};
    const HomebrewInstalledPackage bare = installed(HomebrewCatalogKind::formula, u"crème"_s, u"1.0"_s);

    struct Case
    {
        const HomebrewInstalledPackage* package;
        QString query;
        bool expected;
    };
    const Case cases[] = {
        {&joined, u""_s, true},        {&joined, u"NOD"_s, true}, // identifier, case-insensitive
        {&joined, u"22.3"_s, true}, // installed version
        {&joined, u"22.4"_s, false}, // the catalog version is not searched
        {&joined, u"runtime"_s, true}, // display name
        {&joined, u"network"_s, true}, // summary
        {&joined, u"node@22"_s, true}, // alias only
        {&joined, u"nodejs"_s, true}, // alias only
        {&joined, u"python"_s, false}, {&bare, u"creme"_s, true}, // diacritics ignored
        {&bare, u"CRÈME"_s, true},     {&bare, u"network"_s, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.query.toStdString());
        EXPECT_EQ(c.package->matches(c.query), c.expected);
    }
}
