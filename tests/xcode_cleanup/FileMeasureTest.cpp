#include <gtest/gtest.h>

#include "testsupport/DeveloperTreeBuilder.h"
#include "testsupport/TempTree.h"
#include "xcode_cleanup/FileMeasure.h"

using namespace quillbay;
using quillbay::test::TempTree;

TEST(FileMeasureTest, CountsRegularFilesOnlyAndEveryHardLinkWhereItStands)
{
    TempTree tree;
    tree.writeSizedFile(QStringLiteral("d/a.bin"), 10000);
    tree.writeSizedFile(QStringLiteral("d/deep/er/b.bin"), 70000);
    tree.writeSizedFile(QStringLiteral("outside/huge.bin"), 200000);
    tree.symlink(QStringLiteral("d/link-to-outside"), tree.path(QStringLiteral("outside")));
    tree.symlink(QStringLiteral("d/link-to-file"), tree.path(QStringLiteral("outside/huge.bin")));
    tree.hardlink(QStringLiteral("d/deep/a-again.bin"), QStringLiteral("d/a.bin"));
    tree.writeFile(QStringLiteral("d/.hidden"), QByteArray(5000, 'h'));
    tree.mkdir(QStringLiteral("d/empty"));
    const qint64 a = TempTree::allocatedBytes(tree.path(QStringLiteral("d/a.bin")));
    const qint64 b = TempTree::allocatedBytes(tree.path(QStringLiteral("d/deep/er/b.bin")));
    const qint64 hidden = TempTree::allocatedBytes(tree.path(QStringLiteral("d/.hidden")));

    struct Case
    {
        const char* path;
        std::optional<qint64> directory;
        std::optional<qint64> single;
    };
    const Case cases[] = {
        // links are never followed; a hard link is a file of its own; hidden files count
        {"d", 2 * a + b + hidden, 0},
        {"d/a.bin", std::nullopt, a},
        {"d/link-to-outside", std::nullopt, 0},
        {"d/link-to-file", std::nullopt, 0},
        {"d/empty", 0, 0},
        {"missing", std::nullopt, std::nullopt},
    };
    QStringList together;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        const QString path = tree.path(QString::fromLatin1(c.path));
        EXPECT_EQ(measureDirectory(path), c.directory);
        EXPECT_EQ(measureSingleItem(path), c.single);
        together.append(path);
    }
    // Measured in one walk, with a folder given twice and an empty path among them, each
    // answers as it does alone: a failing neighbour takes nothing from the others.
    together.append(tree.path(QStringLiteral("d")));
    together.append(QString());
    for (const int threads : {1, 4}) {
        SCOPED_TRACE(threads);
        const std::vector<std::optional<qint64>> answers = measureDirectories(together, {}, threads);
        ASSERT_EQ(answers.size(), std::size(cases) + 2);
        for (size_t i = 0; i < std::size(cases); ++i)
            EXPECT_EQ(answers[i], cases[i].directory) << cases[i].path;
        EXPECT_EQ(answers[std::size(cases)], cases[0].directory);
        EXPECT_EQ(answers[std::size(cases) + 1], std::nullopt);
    }

    // A wide tree adds up the same for any thread count; a stopped measure gives no figure.
    qint64 expected = 0;
    test::DeveloperTreeBuilder::fillBuildProducts(tree.path(QStringLiteral("p")), 3000, 42, &expected);
    ASSERT_GT(expected, 0);
    for (const int threads : {1, 3, 32}) {
        SCOPED_TRACE(threads);
        EXPECT_EQ(measureDirectory(tree.path(QStringLiteral("p")), {}, threads), expected);
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(measureDirectory(tree.path(QStringLiteral("p")), stop.get_token()), std::nullopt);
}
