#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "core/state/URLBookmarkManager.h"
#include "platform/FolderBookmark.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using quillbay::test::TempTree;
using File = URLBookmarkManager::File;

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

URLBookmark bookmarkOf(const QString& folder)
{
    URLBookmark entry;
    entry.urlString = folder;
    entry.bookmarkData = FolderBookmark::make(folder);
    entry.url = folder;
    return entry;
}

} // namespace

TEST(URLBookmarkManagerTest, UnreadableFilesGiveEmptyListsAndStayOnDiskAndUnwritableOnesFail)
{
    const QString good = QStringLiteral(R"({"urlString":"/x","bookmarkData":"UUJNMQ=="})");
    const std::pair<const char*, QByteArray> cases[] = {
        {"not JSON", "[{\"urlString\":"},
        {"missing bookmarkData", "[{\"urlString\":\"/x\"}]"},
        {"one bad entry after a good one", "[" + good.toUtf8() + ",7]"},
        {"empty file", ""},
    };
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        TempTree tree;
        URLBookmarkManager manager(tree.root());
        const QString path = tree.writeFile(URLBookmarkManager::fileName(File::customArchives), bytes);
        EXPECT_TRUE(manager.load(File::customArchives).isEmpty());
        EXPECT_EQ(readAll(path), bytes) << "a file that could not be read is never overwritten at load";
    }
    TempTree tree;
    EXPECT_TRUE(URLBookmarkManager(tree.path(QStringLiteral("absent"))).load(File::customArchives).isEmpty());
    EXPECT_FALSE(QFile::exists(tree.path(QStringLiteral("absent")))) << "loading creates nothing";
    const QString belowAFile = tree.writeFile(QStringLiteral("plain"), "x") + QStringLiteral("/Quillbay");
    QString error;
    EXPECT_FALSE(URLBookmarkManager(belowAFile).save({}, File::customArchives, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("customArchivesURLs.json"))) << error.toStdString();
}

TEST(URLBookmarkManagerTest, BadAndVanishedEntriesStayWithoutUrlAndStaleOnesAreRenewed)
{
    TempTree tree;
    const QString kept = tree.mkdir(QStringLiteral("Kept"));
    const QString vanished = tree.mkdir(QStringLiteral("Vanished"));
    const QString replaced = tree.mkdir(QStringLiteral("Replaced"));
    URLBookmark garbage;
    garbage.urlString = QStringLiteral("/somewhere");
    garbage.bookmarkData = QByteArray("not a bookmark");
    const QList<URLBookmark> saved {bookmarkOf(kept), garbage, bookmarkOf(vanished), bookmarkOf(replaced)};
    URLBookmarkManager manager(tree.path(QStringLiteral("data")));
    ASSERT_TRUE(manager.save(saved, File::customArchives));
    ASSERT_TRUE(QDir(vanished).removeRecursively());
    // Same path, another inode: the new folder is made before the old goes.
    ASSERT_TRUE(QDir().mkdir(replaced + QStringLiteral(".new")));
    ASSERT_TRUE(QDir().rmdir(replaced));
    ASSERT_TRUE(QDir().rename(replaced + QStringLiteral(".new"), replaced));
    const QByteArray before = readAll(manager.filePath(File::customArchives));

    const QList<URLBookmark> loaded = manager.load(File::customArchives);
    ASSERT_EQ(loaded.size(), 4) << "no entry is ever dropped at load";
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(loaded[i].urlString, saved[i].urlString) << i;
    EXPECT_EQ(loaded[0].url, kept);
    EXPECT_EQ(loaded[1].url, std::nullopt) << "undecodable bookmark";
    EXPECT_EQ(loaded[2].url, std::nullopt) << "folder gone";
    EXPECT_EQ(loaded[3].url, replaced);
    EXPECT_EQ(loaded[1].bookmarkData, garbage.bookmarkData) << "bad data is kept as it was";
    EXPECT_NE(loaded[3].bookmarkData, saved[3].bookmarkData);
    EXPECT_FALSE(FolderBookmark::resolve(loaded[3].bookmarkData)->isStale);

    const QByteArray after = readAll(manager.filePath(File::customArchives));
    EXPECT_NE(after, before) << "a renewed bookmark is written back";
    const QList<URLBookmark> again = manager.load(File::customArchives);
    EXPECT_EQ(again[3].bookmarkData, loaded[3].bookmarkData);
    EXPECT_EQ(readAll(manager.filePath(File::customArchives)), after) << "nothing stale is left to renew";
}
