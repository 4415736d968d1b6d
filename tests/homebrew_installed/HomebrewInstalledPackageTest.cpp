#include <QProcess>

#include <gtest/gtest.h>

#include "homebrew_installed/HomebrewInstalledPackage.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

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
        {"installed is newer", u"1.2.3"_s, u"1.3.0"_s, true},
        {"spelled differently", u"1.2"_s, u"1.2.0"_s, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HomebrewInstalledPackage package {HomebrewCatalogKind::formula, u"wget"_s, c.installedVersion,
                                          u"/brew/Cellar/wget"_s, std::nullopt};
        if (c.catalogVersion) {
            package.catalogSummary.emplace().identifier = u"wget"_s;
            package.catalogSummary->version = *c.catalogVersion;
        }
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
        {u"python@3.12"_s, u"python@3.12"_s},
        {u"a-b_c+d=e:f,g./h%i"_s, u"a-b_c+d=e:f,g./h%i"_s},
        {u""_s, u"''"_s},
        {u"it's"_s, u"'it'\"'\"'s'"_s},
        {u"'"_s, u"''\"'\"''"_s},
        {u"a b"_s, u"'a b'"_s},
        {u"$(rm -rf ~)"_s, u"'$(rm -rf ~)'"_s},
        {u"`id`;x&y|*"_s, u"'`id`;x&y|*'"_s},
        {u"new\nline"_s, u"'new\nline'"_s},
        {u"~user\\"_s, u"'~user\\'"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        const QString quoted = shellQuoted(c.text);
        EXPECT_EQ(quoted, c.expected);
        // Whatever the text, the shell reads back exactly one word equal to it.
        EXPECT_EQ(shellReading(quoted), c.text);
    }
    const QString broken = u"pkg"_s + QChar(0xD800); // unpaired surrogate
    EXPECT_EQ(shellQuoted(broken), u'\'' + broken + u'\'');
}
