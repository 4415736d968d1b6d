#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "StoreFixture.h"
#include "core/QuillbayApp.h"
#include "core/views/ContentView.h"
#include "core/views/FolderAuthorizationRequiredView.h"
#include "core/views/SidebarItem.h"
#include "core/views/ToastOverlay.h"
#include "core/views/UnavailablePanel.h"
#include "foundation/ByteCount.h"
#include "homebrew_cache/views/HomebrewCacheCleanupView.h"
#include "homebrew_cache/views/HomebrewCacheOutlineModel.h"
#include "testsupport/WidgetAudit.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

template <typename T> T* child(QWidget& root, const char* name)
{
    T* found = root.findChild<T*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

Qt::CheckState checkOf(HomebrewCacheOutlineModel& model, const char* nodeID)
{
    return model.indexOfNode(QLatin1String(nodeID)).data(Qt::CheckStateRole).value<Qt::CheckState>();
}

} // namespace

TEST(HomebrewCacheCleanupViewTest, AuthorizeDeselectOnePackageDeleteAndSeeTheRest)
{
    StoreFixture f;
    f.populate(3);
    HomebrewCacheCleanupView view(*f.store);
    view.resize(900, 600);
    view.show();

    // No folder yet: the authorization panel, no footer.
    auto* authorization = child<FolderAuthorizationRequiredView>(view, "folderAuthorizationRequiredView");
    ASSERT_TRUE(waitUntil([&] { return f.store->hasLoadedAuthorization(); }));
    EXPECT_EQ(view.currentPage(), authorization);
    EXPECT_FALSE(child<QWidget>(view, "homebrewCacheCleanupFooter")->isVisible());

    // Authorize: the panel picks the cache; the scan selects everything.
    f.pickers.answers.push_back(f.cache.root());
    QTest::mouseClick(child<QPushButton>(view, "chooseFolderPushButton"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return view.currentPage() == view.outlineView() && !f.store->isChoosingRoot(); }));
    EXPECT_EQ(f.pickers.requests.at(0).directory, f.cache.root());
    EXPECT_FALSE(f.defaults->dataValue(QStringLiteral("homebrewCache.rootBookmark")).isEmpty());
    EXPECT_EQ(f.store->totalAllocatedSize(),
              allocatedBytesBelow(f.cache.root()) - TempTree::allocatedBytes(f.cache.path(QStringLiteral("downloads")))
                  - TempTree::allocatedBytes(f.cache.path(QStringLiteral("Cask"))));
    HomebrewCacheOutlineModel& model = *view.outlineModel();
    ASSERT_EQ(model.rowCount(), 3); // Formula, Cask, Other Cache
    EXPECT_EQ(checkOf(model, "category-node:formula"), Qt::Checked);
    auto* total = child<QLabel>(view, "totalSizeLabel");
    auto* selected = child<QLabel>(view, "selectedSizeLabel");
    EXPECT_EQ(total->text(), formatByteCount(f.store->totalAllocatedSize()));
    EXPECT_EQ(selected->text(), total->text());

    // Deselect one package with the keyboard, as a user would.
    const QModelIndex pkg1 = model.indexOfNode(QStringLiteral("package-node:formula:pkg1"));
    ASSERT_TRUE(pkg1.isValid());
    view.outlineView()->expandAll();
    view.outlineView()->setCurrentIndex(pkg1);
    QTest::keyClick(view.outlineView(), Qt::Key_Space);
    EXPECT_EQ(checkOf(model, "package-node:formula:pkg1"), Qt::Unchecked);
    EXPECT_EQ(checkOf(model, "category-node:formula"), Qt::PartiallyChecked);
    const qint64 toDelete = f.store->selectedAllocatedSize();
    EXPECT_EQ(selected->text(), formatByteCount(toDelete));
    EXPECT_NE(selected->text(), total->text());

    // Delete, confirm, and ask never again.
    QTest::mouseClick(child<QPushButton>(view, "deletePushButton"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return view.confirmation() != nullptr && view.confirmation()->isVisible(); }));
    QMessageBox* box = view.confirmation();
    EXPECT_TRUE(box->informativeText().startsWith(QStringLiteral("Approximate size: ") + formatByteCount(toDelete)
                                                  + QStringLiteral(". This permanently deletes")));
    box->checkBox()->setChecked(true);
    QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("deletePermanentlyPushButton")), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return !f.store->isCleaning() && f.store->toastMessage().has_value(); }));

    // The disk, the toast, the saved total, the new outline.
    EXPECT_TRUE(f.cache.exists(QStringLiteral("pkg1--1.1.tar.gz")));
    EXPECT_TRUE(f.cache.exists(QStringLiteral("downloads/h1--pkg1--1.1.tar.gz")));
    for (const char* gone : {"pkg0--1.0.tar.gz", "downloads/h2--pkg2--1.2.tar.gz", "Cask/app--2.0.dmg", "api"}) {
        SCOPED_TRACE(gone);
        EXPECT_FALSE(f.cache.exists(QLatin1String(gone)));
    }
    const QString toast = QStringLiteral("Cleanup completed. Space reclaimed: %1.").arg(formatByteCount(toDelete));
    EXPECT_EQ(view.toast()->text(), toast);
    EXPECT_EQ(f.savedSpace.totalBytes(), toDelete);
    EXPECT_EQ(f.successes.size(), 1u);
    EXPECT_TRUE(f.cache.exists(QStringLiteral("Cask"))) << "containers stay while something is left";
    EXPECT_TRUE(f.store->suppressDeleteWarningAlert());
    ASSERT_EQ(model.rowCount(), 1);
    ASSERT_EQ(model.rowCount(model.index(0, 0)), 1);
    EXPECT_EQ(model.index(0, 0, model.index(0, 0)).data().toString(), QStringLiteral("pkg1"));
    EXPECT_EQ(checkOf(model, "category-node:formula"), Qt::Checked);

    EXPECT_EQ(controlsWithoutAccessibleName(&view), "");
    // A new launch restores the folder and scans it once by itself.
    auto relaunched = f.makeStore();
    auto loading = relaunched->loadAuthorizationAndScanIfNeeded();
    ASSERT_TRUE(waitUntil([&] { return loading.isFinished(); }));
    EXPECT_TRUE(relaunched->hasScannedThisLaunch());
    EXPECT_EQ(relaunched->entries(), f.store->entries());

    // Asked never again: the Delete key deletes at once, and the cache is empty.
    view.outlineView()->setFocus();
    ASSERT_TRUE(pressKey(view.outlineView(), QKeySequence::Delete));
    EXPECT_EQ(view.confirmation(), nullptr);
    ASSERT_TRUE(waitUntil(
        [&] { return !f.store->isCleaning() && view.currentPage()->objectName() == QLatin1String("emptyPanel"); }));
    const auto* empty = qobject_cast<UnavailablePanel*>(view.currentPage());
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->title(), QStringLiteral("Homebrew Cache Is Empty"));
    // Everything was selected: the empty containers went too.
    EXPECT_FALSE(f.cache.exists(QStringLiteral("downloads")));
    EXPECT_FALSE(f.cache.exists(QStringLiteral("Cask")));
    EXPECT_EQ(f.successes.size(), 2u);
    EXPECT_FALSE(child<QWidget>(view, "homebrewCacheCleanupFooter")->isVisible());
    // The toast clears itself and the store with it.
    ASSERT_TRUE(
        waitUntil([&] { return !f.store->toastMessage().has_value(); }, ToastOverlay::displayMilliseconds + 2000));
}

TEST(HomebrewCacheCleanupViewTest, AFailedRescanOffersRetry)
{
    StoreFixture f;
    f.populate(1);
    HomebrewCacheCleanupView view(*f.store);
    view.show();
    ASSERT_TRUE(f.authorize());

    // The cache folder becomes a link: the rescan fails and the page offers "Retry".
    const QString moved = f.cache.tree().path(QStringLiteral("home/moved"));
    ASSERT_TRUE(QDir().rename(f.cache.root(), moved));
    f.cache.tree().symlink(QStringLiteral("home/.cache/Homebrew"), moved);
    ASSERT_TRUE(pressKey(&view, QKeySequence(Qt::CTRL | Qt::Key_R))) << "Ctrl+R rescans";
    ASSERT_TRUE(waitUntil([&] { return view.currentPage()->objectName() == QLatin1String("failedPanel"); }));
    const auto* failed = qobject_cast<UnavailablePanel*>(view.currentPage());
    ASSERT_NE(failed, nullptr);
    EXPECT_EQ(failed->title(), QStringLiteral("Failed to load data"));
    ASSERT_TRUE(f.store->errorMessage().has_value());
    EXPECT_EQ(failed->description(), *f.store->errorMessage());
    EXPECT_TRUE(child<QPushButton>(view, "retryPushButton")->isEnabled());

    // Put it back: "Retry" scans again and the outline returns.
    QFile::remove(f.cache.root());
    ASSERT_TRUE(QDir().rename(moved, f.cache.root()));
    QTest::mouseClick(child<QPushButton>(view, "retryPushButton"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return view.currentPage() == view.outlineView(); }));
    ASSERT_TRUE(waitUntil([&] { return view.toast()->text() == QLatin1String("Completed"); }));
}

TEST(HomebrewCacheCleanupViewTest, TheSidebarOpensThisPage)
{
    QTemporaryDir home;
    QuillbayApp app(std::make_unique<SettingsDefaults>(home.filePath(QStringLiteral("defaults.ini"))));
    ContentView window(app);
    window.select(sidebarItem(Tool::homebrewCleanup).id);
    EXPECT_EQ(window.currentScreen()->objectName(), QStringLiteral("homebrewCacheCleanupView"));
}
