#include <QFileInfo>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "foundation/ByteCount.h"
#include "platform/FolderBookmark.h"
#include "testsupport/CleanupFlowFixture.h"
#include "testsupport/ImmutableFile.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

struct ScannedFixture : CleanupFlowFixture
{
    ScannedFixture()
    {
        buildDeveloperTree();
        model->requestDeveloperFolderAuthorization(false);
        EXPECT_TRUE(waitUntil([&] { return model->hasFileManager(); }));
        EXPECT_TRUE(waitForIdle());
    }

    void select(const QString& label)
    {
        const XcodeFileProperties* node = find(label);
        ASSERT_NE(node, nullptr) << label.toStdString();
        model->setSelected(node->id, true);
    }

    // Runs one clean to the end of its rescan. A clean with nothing to do may land before
    // clean() returns, so its start is seen through the signal.
    void cleanAndWait()
    {
        bool started = false;
        const auto watch = QObject::connect(model.get(), &AppViewModel::cleanupStateChanged, model.get(),
                                            [&] { started = started || model->cleaning(); });
        model->clean();
        QObject::disconnect(watch);
        ASSERT_TRUE(started);
        ASSERT_TRUE(waitForIdle());
    }
};

} // namespace

TEST(AppViewModelCleanupTest, OutcomesOfPartialFailedAndEmptyRuns)
{
    struct Case
    {
        const char* name;
        QStringList selected;
        bool lockMyApp; // an immutable info.plist in My App
        bool removeBefore; // the selection vanished from the disk before the clean
        QString message; // empty: the partial text with the freed bytes
        int credit;
        bool savedGrows;
    };
    // Rows that need an immutable file come last: without one the test stops there.
    const QString failed = QStringLiteral("Cleanup failed. The selected items could not be deleted.");
    const QString other = QStringLiteral("Other");
    const QString myApp = QStringLiteral("My App");
    const Case cases[] = {
        {"all deleted", {other}, false, false, QStringLiteral("Completed"), 1, true},
        {"everything already gone", {other}, false, true, QStringLiteral("Completed"), 0, false},
        {"one of two fails", {myApp, other}, true, false, {}, 0, true},
        {"the only one fails", {myApp}, true, false, failed, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScannedFixture f;
        QSignalSpy credit(f.model.get(), &AppViewModel::successfulActionCompleted);
        for (const QString& label : c.selected)
            f.select(label);
        std::unique_ptr<ImmutableFile> lock;
        if (c.lockMyApp) {
            lock = std::make_unique<ImmutableFile>(f.myApp + QStringLiteral("/info.plist"));
            if (!lock->isActive())
                GTEST_SKIP() << "no immutable files here, and root may remove anything else";
        }
        if (c.removeBefore) {
            ASSERT_TRUE(QDir(f.other).removeRecursively());
        }
        const qint64 otherBytes = f.find(QStringLiteral("Other"))->size.bytesOrZero();
        // The moment the clean lands, the selection is gone and "Delete..." is off, while
        // the rescan is already running.
        bool checkedAtLanding = false;
        QObject::connect(f.model.get(), &AppViewModel::cleanupStateChanged, f.model.get(), [&] {
            if (!checkedAtLanding && !f.model->cleaning() && f.model->scanning()) {
                checkedAtLanding = true;
                EXPECT_EQ(f.model->selectedSize(), 0);
                EXPECT_TRUE(f.model->disableClean());
            }
        });
        f.cleanAndWait();
        EXPECT_TRUE(checkedAtLanding);
        const QString expected = !c.message.isEmpty() ? c.message
                                                      : QStringLiteral("Cleanup partially completed. Space reclaimed: ")
                + formatByteCount(otherBytes) + QStringLiteral(". Some selected items could not be deleted.");
        EXPECT_EQ(f.model->toastMessage(), expected);
        EXPECT_EQ(credit.count(), c.credit);
        EXPECT_EQ(f.saved.totalBytes(), c.savedGrows ? otherBytes : 0);
        EXPECT_EQ(f.defaults.integerValue(QStringLiteral("TotalBytesDeleted"), 0), f.saved.totalBytes());
        EXPECT_EQ(f.find(QStringLiteral("Other")) == nullptr, c.selected.contains(QStringLiteral("Other")));
        if (c.lockMyApp) {
            EXPECT_TRUE(QFileInfo::exists(f.myApp + QStringLiteral("/info.plist")));
            EXPECT_NE(f.find(QStringLiteral("My App")), nullptr) << "what stayed is listed again";
        }
    }
}

TEST(AppViewModelCleanupTest, SelectionRollsUpAndGuardsRefuseOverlappingWork)
{
    ScannedFixture f;
    const XcodeFileProperties* derived = f.find(QStringLiteral("Derived Data"));
    ASSERT_NE(derived, nullptr);
    ASSERT_EQ(derived->children->size(), 2);
    f.model->setSelected(derived->children->at(0).id, true);
    EXPECT_FALSE(f.model->isSelected(derived->id));
    EXPECT_EQ(f.model->selectedSize(), derived->children->at(0).size.bytesOrZero());
    f.model->setSelected(derived->children->at(1).id, true);
    EXPECT_TRUE(f.model->isSelected(derived->id)) << "the last child checks the parent";
    EXPECT_EQ(f.model->selectedSize(), derived->size.bytesOrZero()) << "a row without paths adds only its children";
    f.model->selectAll(false);

    f.workspace.running = {QStringLiteral("com.apple.dt.XcodeHelper"), QStringLiteral("Xcode")};
    EXPECT_FALSE(f.model->isXcodeRunning()) << "only the exact identifier counts";
    f.workspace.running << QStringLiteral("com.apple.dt.Xcode");
    EXPECT_TRUE(f.model->isXcodeRunning());

    f.select(QStringLiteral("Other"));
    // Each request is made at a moment the other operation is known to run: inside the
    // store's own notifications.
    int cleansRefused = 0;
    auto scanWatch = QObject::connect(f.model.get(), &AppViewModel::localFilesChanged, f.model.get(), [&] {
        if (!f.model->scanning())
            return;
        f.model->clean();
        f.model->removeDeveloperFolderAuthorization();
        cleansRefused += !f.model->cleaning() && f.model->hasFileManager() ? 1 : 0;
    });
    EXPECT_FALSE(f.model->toastMessage()) << "the first scan reports nothing";
    f.model->rescan();
    ASSERT_TRUE(f.waitForIdle());
    QObject::disconnect(scanWatch);
    EXPECT_EQ(cleansRefused, 8);
    EXPECT_EQ(f.model->toastMessage(), QStringLiteral("Completed"));
    qint64 sum = 0;
    for (const XcodeFileProperties& row : f.model->localFiles())
        sum += row.size.bytesOrZero();
    EXPECT_EQ(f.model->totalSize(), sum);
    EXPECT_GT(sum, 300000);
    EXPECT_TRUE(QFileInfo::exists(f.other));

    f.select(QStringLiteral("Other"));
    int scansRefused = 0;
    bool checked = false;
    auto cleanWatch = QObject::connect(f.model.get(), &AppViewModel::cleanupStateChanged, f.model.get(), [&] {
        if (checked || !f.model->cleaning())
            return;
        checked = true;
        f.model->rescan();
        f.model->startInitialScan();
        f.model->removeDeveloperFolderAuthorization();
        scansRefused = !f.model->scanning() && f.model->hasFileManager() ? 1 : 0;
    });
    f.cleanAndWait();
    QObject::disconnect(cleanWatch);
    EXPECT_EQ(scansRefused, 1);
    EXPECT_EQ(f.find(QStringLiteral("Other")), nullptr);

    // Once idle, removing the authorization clears the folder, the rows and the selection.
    const QString key = QStringLiteral("DeveloperFolderBookmarkKey");
    f.defaults.setValue(key, FolderBookmark::make(f.developer));
    f.model->selectAll(true);
    EXPECT_EQ(f.model->selectedSize(), f.model->totalSize());
    f.model->removeDeveloperFolderAuthorization();
    EXPECT_FALSE(f.model->hasFileManager());
    EXPECT_FALSE(f.defaults.contains(key));
    EXPECT_TRUE(f.model->localFiles().empty());
    EXPECT_EQ(f.model->selectedSize(), 0);
    EXPECT_TRUE(f.model->disableClean());
}
