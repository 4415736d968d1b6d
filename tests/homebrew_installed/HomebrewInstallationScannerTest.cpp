#include <QStringList>
#include <algorithm>

#include <gtest/gtest.h>

#include "homebrew_installed/HomebrewInstallationScanner.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView kBrewScript = "#!/bin/bash\nexec ruby brew.rb \"$@\"\n";

void makeBrew(TempTree& tree, const QString& root)
{
    tree.writeFile(root + u"/bin/brew"_s, kBrewScript.toByteArray());
}

// "kind identifier version path-below-root", sorted within each kind but keeping the kinds'
// order, so a test sees both the rows and that casks come first.
QStringList describe(const HomebrewInstallationScanResult& result, const QString& root)
{
    QStringList casks;
    QStringList formulae;
    for (const HomebrewInstalledPackage& p : result.packages) {
        EXPECT_FALSE(p.catalogSummary.has_value());
        const QString below = p.installationURL.startsWith(root + u'/') ? p.installationURL.mid(root.size() + 1)
                                                                        : u"OUTSIDE "_s + p.installationURL;
        (p.kind == HomebrewCatalogKind::cask ? casks : formulae)
            .append(rawValue(p.kind) + u' ' + p.identifier + u' ' + p.installedVersion + u' ' + below);
    }
    // Listing order is the file system's; the rows of one kind must still be contiguous.
    const auto firstFormula = std::find_if(result.packages.cbegin(), result.packages.cend(),
                                           [](const auto& p) { return p.kind == HomebrewCatalogKind::formula; });
    EXPECT_TRUE(std::all_of(firstFormula, result.packages.cend(), [](const auto& p) {
        return p.kind == HomebrewCatalogKind::formula;
    })) << "casks must all come before formulae";
    casks.sort();
    formulae.sort();
    return casks + formulae;
}

HomebrewInstallationScanResult scanOrFail(const QString& root)
{
    const auto outcome = HomebrewInstallationScanner().scan(root);
    if (const auto* error = std::get_if<HomebrewInstallationScannerError>(&outcome)) {
        ADD_FAILURE() << "scan failed: " << errorDescription(*error).toStdString();
        return {};
    }
    return std::get<HomebrewInstallationScanResult>(outcome);
}

} // namespace

TEST(HomebrewInstallationScannerTest, ValidatesTheRoot)
{
    TempTree tree;
    makeBrew(tree, u"plain"_s);
    tree.mkdir(u"dangling/bin"_s);
    tree.symlink(u"dangling/bin/brew"_s, u"../missing"_s);
    tree.mkdir(u"no-bin/Cellar"_s);
    tree.writeFile(u"a-file"_s, "x");
    tree.symlink(u"link-to-plain"_s, u"plain"_s);

    using Error = HomebrewInstallationScannerError;
    struct Case
    {
        QString root;
        std::optional<Error> expected;
    };
    const Case cases[] = {
        {tree.path(u"plain"_s), std::nullopt},
        {tree.path(u"link-to-plain"_s), std::nullopt},
        {tree.path(u"no-bin/../plain/./"_s), std::nullopt},
        {tree.path(u"dangling"_s), Error::invalidRoot},
        {tree.path(u"no-bin"_s), Error::invalidRoot},
        {tree.path(u"missing"_s), Error::rootIsNotReadable},
        {tree.path(u"a-file"_s), Error::rootIsNotReadable},
    };
    const HomebrewInstallationScanner scanner;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.root.toStdString());
        EXPECT_EQ(scanner.validateRoot(c.root), c.expected);
        const auto outcome = scanner.scan(c.root);
        const auto* error = std::get_if<Error>(&outcome);
        EXPECT_EQ(error ? std::optional(*error) : std::nullopt, c.expected);
    }
}

TEST(HomebrewInstallationScannerTest, ListsVersionFoldersAndIgnoresEverythingElse)
{
    TempTree tree;
    makeBrew(tree, u"brew"_s);
    tree.mkdir(u"brew/Cellar/wget/1.24.5/bin"_s);
    tree.mkdir(u"brew/Cellar/wget/1.25.0"_s);
    tree.writeFile(u"brew/Cellar/wget/INSTALL_RECEIPT.json"_s, "{}");
    tree.mkdir(u"brew/Cellar/wget/.hidden-version"_s);
    tree.mkdir(u"brew/Cellar/empty-package"_s);
    tree.mkdir(u"brew/Cellar/.hidden-package/1.0"_s);
    tree.writeFile(u"brew/Cellar/README"_s, "not a package");
    // A package folder that is a link, even to a real package inside the root, is no package.
    tree.mkdir(u"brew/opt-real/linked-package/3.0"_s);
    tree.symlink(u"brew/Cellar/linked-package"_s, u"../opt-real/linked-package"_s);
    // A version folder that is a link is no version, wherever it points.
    tree.mkdir(u"brew/Cellar/git/2.45.0"_s);
    tree.symlink(u"brew/Cellar/git/current"_s, u"2.45.0"_s);
    tree.mkdir(u"outside/9.9"_s);
    tree.symlink(u"brew/Cellar/git/escaped"_s, u"../../../outside/9.9"_s);
    // Odd names pass through unchanged.
    tree.mkdir(u"brew/Cellar/odd name's (x)/1.0 beta+ü$HOME"_s);
    // A kind folder may be a link inside the root; rows name the root as given, not its
    // resolved target.
    tree.mkdir(u"brew/real-caskroom/firefox/128.0"_s);
    tree.mkdir(u"brew/real-caskroom/firefox/129.0"_s);
    tree.mkdir(u"brew/real-caskroom/font-fira code/6.2"_s);
    tree.symlink(u"brew/Caskroom"_s, u"real-caskroom"_s);
    tree.symlink(u"brew-link"_s, u"brew"_s);

    const QString root = tree.path(u"brew-link"_s);
    const HomebrewInstallationScanResult result = scanOrFail(root);
    EXPECT_TRUE(result.unreadableKinds.empty());
    EXPECT_EQ(describe(result, root),
              (QStringList {
                  u"cask firefox 128.0 Caskroom/firefox/128.0"_s,
                  u"cask firefox 129.0 Caskroom/firefox/129.0"_s,
                  u"cask font-fira code 6.2 Caskroom/font-fira code/6.2"_s,
                  u"formula git 2.45.0 Cellar/git/2.45.0"_s,
                  u"formula odd name's (x) 1.0 beta+ü$HOME Cellar/odd name's (x)/1.0 beta+ü$HOME"_s,
                  u"formula wget 1.24.5 Cellar/wget/1.24.5"_s,
                  u"formula wget 1.25.0 Cellar/wget/1.25.0"_s,
              }));
}

TEST(HomebrewInstallationScannerTest, KindFoldersAreFollowedOnlyInsideTheRoot)
{
    TempTree tree;
    makeBrew(tree, u"brew"_s);
    tree.mkdir(u"elsewhere/jq/1.7"_s);
    tree.symlink(u"brew/Cellar"_s, u"../elsewhere"_s);
    tree.symlink(u"brew/Caskroom"_s, u".."_s); // the root's parent
    const HomebrewInstallationScanResult result = scanOrFail(tree.path(u"brew"_s));
    EXPECT_TRUE(result.unreadableKinds.empty());
    EXPECT_EQ(describe(result, tree.path(u"brew"_s)), QStringList());
}
