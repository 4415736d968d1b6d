#include <QDir>

#include <gtest/gtest.h>

#include "foundation/PathContainment.h"
#include "testsupport/TempTree.h"

using namespace quillbay;

TEST(PathContainmentTest, InsideMeansEqualOrBelowAtASlashAfterResolvingLinks)
{
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"/a/b", "/a/b", true},    {"/a/b/c", "/a/b", true}, {"/a/b2/c", "/a/b", false}, {"/a", "/a/b", false},
        {"/a/bc", "/a/b/", false}, {"/anything", "/", true}, {"", "/a", false},          {"/a", "", false},
    };
    for (const auto& [path, root, inside] : cases) {
        SCOPED_TRACE(std::string(path) + " in " + root);
        EXPECT_EQ(isPathInside(QString::fromUtf8(path), QString::fromUtf8(root)), inside);
    }
    test::TempTree tree;
    tree.mkdir(QStringLiteral("real/inner"));
    tree.symlink(QStringLiteral("link"), tree.path(QStringLiteral("real")));
    const QString canonicalRoot = QDir(tree.root()).canonicalPath();
    EXPECT_EQ(resolvedPath(tree.path(QStringLiteral("link/inner"))), canonicalRoot + QStringLiteral("/real/inner"));
    // A missing tail is kept as written after the resolved prefix.
    EXPECT_EQ(resolvedPath(tree.path(QStringLiteral("link/missing/x"))),
              canonicalRoot + QStringLiteral("/real/missing/x"));
    EXPECT_EQ(standardizedPath(QStringLiteral("/a/./b/../c//")), QStringLiteral("/a/c"));
}
