#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <unistd.h>

#include "StoreFixture.h"
#include "foundation/ByteCount.h"
#include "platform/FolderBookmark.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

using Page = HomebrewCacheCleanupPage;
const QString kBookmarkKey = QStringLiteral("homebrewCache.rootBookmark");

} // namespace

TEST(HomebrewCacheCleanupStoreTest, AWrongFolderIsRefusedAndNothingIsSaved)
{
    StoreFixture f;
    f.populate();
    const QString wrong = f.cache.tree().mkdir(QStringLiteral("home/elsewhere"));
    const QString invalid = QStringLiteral("Choose the default Homebrew cache folder at ~/.cache/Homebrew.");
    f.pickers.answers.push_back(wrong);
    f.store->chooseRoot();
    ASSERT_TRUE(waitUntil([&] { return !f.store->isChoosingRoot() && f.store->errorMessage().has_value(); }));
    EXPECT_EQ(f.store->errorMessage(), invalid);
    EXPECT_EQ(f.store->page(), Page::authorizationRequired);
    EXPECT_TRUE(f.defaults->dataValue(kBookmarkKey).isEmpty());

    // Cancelling changes nothing.
    f.store->chooseRoot();
    ASSERT_TRUE(waitUntil([&] { return !f.store->isChoosingRoot(); }));
    EXPECT_EQ(f.pickers.requests.size(), 2);

    // With an earlier folder the page stays authorized, now showing the failure.
    ASSERT_TRUE(f.authorize());
    const QByteArray saved = f.defaults->dataValue(kBookmarkKey);
    f.pickers.answers.push_back(wrong);
    f.store->chooseRoot();
    ASSERT_TRUE(waitUntil([&] { return !f.store->isChoosingRoot() && f.store->errorMessage().has_value(); }));
    EXPECT_TRUE(f.store->isAuthorized());
    EXPECT_EQ(f.store->page(), Page::failed);
    EXPECT_EQ(f.store->errorMessage(), invalid);
    EXPECT_EQ(f.defaults->dataValue(kBookmarkKey), saved);
}

TEST(HomebrewCacheCleanupStoreTest, RestoresRenewsOrDropsTheStoredBookmark)
{
    struct Case
    {
        const char* label;
        std::function<QByteArray(StoreFixture&)> bookmark;
        bool authorized;
        const char* error; // nullptr: none
        bool keyStays; // the stored data afterwards: kept (or renewed) or removed
        bool renewed;
    };
    const Case cases[] = {
        {"nothing stored", [](StoreFixture&) { return QByteArray(); }, false, nullptr, false, false},
        {"the cache", [](StoreFixture& f) { return FolderBookmark::make(f.cache.root()); }, true, nullptr, true, false},
        {"another folder",
         [](StoreFixture& f) { return FolderBookmark::make(f.cache.tree().mkdir(QStringLiteral("home/other"))); },
         false, "Choose the default Homebrew cache folder at ~/.cache/Homebrew.", true, false},
        {"garbage", [](StoreFixture&) { return QByteArray("not a bookmark"); }, false,
         "The saved Homebrew cache folder authorization is no longer valid.", false, false},
        {"a replaced folder",
         [](StoreFixture& f) {
             const QByteArray old = FolderBookmark::make(f.cache.root());
             // Moved aside, not deleted, so that the new folder cannot reuse its inode.
             QDir().rename(f.cache.root(), f.cache.tree().path(QStringLiteral("home/old-cache")));
             f.cache.tree().mkdir(QStringLiteral("home/.cache/Homebrew"));
             return old;
         },
         true, nullptr, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        StoreFixture f;
        const QByteArray stored = c.bookmark(f);
        if (!stored.isEmpty())
            f.defaults->setValue(kBookmarkKey, stored);
        auto first = f.store->loadAuthorization();
        auto second = f.store->loadAuthorization(); // overlapping: waits for the first
        ASSERT_TRUE(waitUntil([&] { return first.isFinished() && second.isFinished(); }));
        EXPECT_TRUE(f.store->hasLoadedAuthorization());
        EXPECT_FALSE(f.store->isLoadingAuthorization());
        EXPECT_EQ(f.store->isAuthorized(), c.authorized);
        EXPECT_EQ(f.store->errorMessage(), c.error ? std::optional(QString::fromUtf8(c.error)) : std::nullopt);
        const QByteArray after = f.defaults->dataValue(kBookmarkKey);
        EXPECT_EQ(!after.isEmpty(), c.keyStays);
        if (c.keyStays) {
            EXPECT_EQ(after != stored, c.renewed);
        }
    }
}

TEST(HomebrewCacheCleanupStoreTest, PartialAndFailedCleansSayWhatHappened)
{
    struct Case
    {
        const char* label;
        bool alsoAGoodOne;
        const char* toast; // %1: the reclaimed size
    };
    const Case cases[] = {
        {"partial", true,
         "Cleanup partially completed. Space reclaimed: %1. Some selected items could not be deleted."},
        {"failed", false, "Cleanup failed. The selected items could not be deleted."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        StoreFixture f;
        const QString target = QStringLiteral("downloads/h--bad--1.0.tar.gz");
        f.cache.file(target, 8192);
        const QString link = f.cache.link(QStringLiteral("bad--1.0.tar.gz"), target);
        const QString good = f.cache.file(QStringLiteral("good.zip"), 8192);
        const QString twinFile = f.cache.outsideFile(QStringLiteral("twin/h--bad--1.0.tar.gz"), 4096);
        ASSERT_TRUE(f.authorize());
        const qint64 expected = TempTree::allocatedBytes(link) + (c.alsoAGoodOne ? TempTree::allocatedBytes(good) : 0);
        f.store->deselectAll();
        f.store->setSelected(QStringLiteral("package:formula:bad:1.0"), true);
        if (c.alsoAGoodOne)
            f.store->setSelected(QStringLiteral("other:path:") + good, true);
        // After the checks, downloads/ becomes a link out of the cache.
        f.store->cleanerForTesting().setBeforeRemovalForTesting([&f, target](const QString& path) {
            if (!path.endsWith(target))
                return;
            const QString downloads = f.cache.path(QStringLiteral("downloads"));
            QDir(downloads).removeRecursively();
            ::symlink(QFile::encodeName(f.cache.outside(QStringLiteral("twin"))).constData(),
                      QFile::encodeName(downloads).constData());
        });
        auto cleaning = f.store->clean();
        ASSERT_TRUE(waitUntil([&] { return cleaning.isFinished(); }));
        EXPECT_EQ(f.savedSpace.totalBytes(), expected);
        EXPECT_EQ(f.store->toastMessage(), QString::fromUtf8(c.toast).arg(formatByteCount(expected)));
        EXPECT_TRUE(f.successes.empty()) << "a partial result is no success";
        EXPECT_TRUE(QFile::exists(twinFile));
    }
}

TEST(HomebrewCacheCleanupStoreTest, RescanGuardsSuppressionAndRemoval)
{
    StoreFixture f;
    f.populate();
    ASSERT_TRUE(f.authorize());
    auto first = f.store->rescan();
    auto second = f.store->rescan();
    EXPECT_TRUE(second.isFinished()) << "a second press during a scan does nothing";
    ASSERT_TRUE(waitUntil([&] { return first.isFinished() && f.store->toastMessage().has_value(); }));
    EXPECT_EQ(f.store->toastMessage(), QStringLiteral("Completed"));

    // "Don't ask again": the delete runs at once.
    f.store->setSuppressDeleteWarningAlert(true);
    f.store->deselectAll();
    EXPECT_EQ(f.store->requestDelete(), HomebrewCacheCleanupStore::DeleteRequest::ignored);
    f.store->setSelected(QStringLiteral("package:formula:pkg2:1.2"), true);
    EXPECT_EQ(f.store->requestDelete(), HomebrewCacheCleanupStore::DeleteRequest::started);
    EXPECT_TRUE(f.store->isCleaning());
    EXPECT_TRUE(f.store->rescan().isFinished()) << "no rescan during a clean";
    f.store->removeAuthorization();
    EXPECT_TRUE(f.store->isAuthorized()) << "not while cleaning";
    ASSERT_TRUE(waitUntil([&] { return !f.store->isCleaning(); }));

    f.store->removeAuthorization();
    EXPECT_EQ(f.store->page(), Page::authorizationRequired);
    EXPECT_TRUE(f.defaults->dataValue(kBookmarkKey).isEmpty());
    EXPECT_TRUE(f.cache.exists(QStringLiteral("pkg1--1.1.tar.gz"))) << "no file is touched";
    // A new visit of the page restores nothing in this launch.
    f.defaults->setValue(kBookmarkKey, FolderBookmark::make(f.cache.root()));
    auto visit = f.store->loadAuthorizationAndScanIfNeeded();
    ASSERT_TRUE(waitUntil([&] { return visit.isFinished(); }));
    EXPECT_FALSE(f.store->isAuthorized());
}
