#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "core/views/FolderAuthorizationRequiredView.h"
#include "core/views/ToastOverlay.h"
#include "foundation/ByteCount.h"
#include "testsupport/CleanupFlowFixture.h"
#include "testsupport/WidgetAudit.h"
#include "xcode_cleanup/views/CleanupView.h"
#include "xcode_cleanup/views/XcodeCleanupContent.h"
#include "xcode_cleanup/views/XcodeCleanupFooter.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

// The cleanup screen in a window, on the fixture's view model, with the scripted panels
// put back in place of the file dialogs the screen installs for itself.
struct Screen
{
    CleanupFlowFixture f;
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    CleanupView* view = nullptr;
    ToastOverlay* toast = nullptr;

    void show()
    {
        view = new CleanupView(*f.model, window.get());
        f.model->setCleanupPanels(&f.pickers, &f.alerts);
        toast = new ToastOverlay(window.get());
        QObject::connect(f.model.get(), &AppViewModel::toastMessageChanged, toast, [this] {
            if (f.model->toastMessage())
                toast->showMessage(*f.model->toastMessage());
        });
        window->resize(900, 600);
        view->resize(900, 600);
        window->show();
    }

    QPushButton* button(const char* objectName) const
    {
        return view->findChild<QPushButton*>(QLatin1String(objectName));
    }

    QLabel* label(const char* objectName) const { return view->findChild<QLabel*>(QLatin1String(objectName)); }

    QTreeView* tree() const { return view->content()->treeView(); }

    // The row whose label is `text`, anywhere in the outline.
    QModelIndex row(const QString& text) const
    {
        const QModelIndexList hits = tree()->model()->match(tree()->model()->index(0, 0), Qt::DisplayRole, text, 1,
                                                            Qt::MatchExactly | Qt::MatchRecursive);
        return hits.isEmpty() ? QModelIndex() : hits.first();
    }

    // Clicks the check box of a row the way a user does.
    void tick(const QString& text)
    {
        QModelIndex index = row(text);
        ASSERT_TRUE(index.isValid()) << text.toStdString();
        for (QModelIndex parent = index.parent(); parent.isValid(); parent = parent.parent())
            tree()->expand(parent);
        tree()->scrollTo(index);
        QApplication::processEvents();
        QStyleOptionViewItem option;
        option.initFrom(tree()->viewport());
        option.rect = tree()->visualRect(index);
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        const QRect box = tree()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, tree());
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, box.center());
    }

    static QAbstractButton* buttonIn(QMessageBox* box, const QString& text)
    {
        for (QAbstractButton* b : box->buttons()) {
            if (b->text() == text)
                return b;
        }
        return nullptr;
    }
};

} // namespace

TEST(CleanupViewTest, AuthorizeScanTickDeleteAndSeeTheResult)
{
    Screen s;
    s.show();
    // Scans of a small tree can end before the test looks, so what holds while the model is
    // busy is recorded as it happens.
    bool sawScan = false;
    bool rescanWhileBusy = false;
    bool overlayWhileCleaning = false;
    QObject::connect(s.f.model.get(), &AppViewModel::cleanupStateChanged, s.view, [&] {
        const bool busy = s.f.model->scanning() || s.f.model->cleaning();
        sawScan = sawScan || s.f.model->scanning();
        rescanWhileBusy = rescanWhileBusy || (busy && s.view->rescanAction()->isEnabled());
        if (s.f.model->cleaning())
            overlayWhileCleaning = s.view->content()->isShowingCleaningOverlay();
    });
    // No Developer folder yet: the request on appearing is silent and the screen asks.
    ASSERT_TRUE(waitUntil([&] { return !s.f.model->isRequestingDeveloperFolderAuthorization(); }));
    EXPECT_TRUE(s.view->isShowingAuthorization());
    EXPECT_TRUE(s.f.pickers.requests.isEmpty());
    EXPECT_FALSE(s.view->rescanAction()->isEnabled());

    // "Choose Folder" opens the panel at the Developer folder; the user cancels.
    s.f.pickers.cancelNext();
    s.button("chooseFolderPushButton")->click();
    ASSERT_TRUE(waitUntil([&] { return !s.f.model->isRequestingDeveloperFolderAuthorization(); }));
    ASSERT_EQ(s.f.pickers.requests.size(), 1);
    EXPECT_EQ(s.f.pickers.requests[0].directory, s.f.developer);

    // Xcode has been run since; now the folder is there and can be used.
    s.f.buildDeveloperTree();
    s.button("chooseFolderPushButton")->click();
    ASSERT_TRUE(waitUntil([&] { return s.f.model->hasFileManager(); }));
    EXPECT_FALSE(s.view->isShowingAuthorization());
    ASSERT_TRUE(s.f.waitForIdle());
    EXPECT_TRUE(sawScan);
    EXPECT_TRUE(s.view->rescanAction()->isEnabled());
    EXPECT_FALSE(s.view->content()->isShowingEmptyState());
    EXPECT_EQ(s.tree()->model()->rowCount(), 6);
    EXPECT_FALSE(s.button("deletePushButton")->isEnabled());
    EXPECT_EQ(s.label("totalLabel")->text(), QStringLiteral("Total: ") + formatByteCount(s.f.model->totalSize()));

    const qint64 appBytes = s.f.find(QStringLiteral("My App"))->size.bytesOrZero();
    const qint64 docBytes = s.f.find(QStringLiteral("Cache from Xcode 15.4"))->size.bytesOrZero();
    s.tick(QStringLiteral("My App"));
    s.tick(QStringLiteral("Cache from Xcode 15.4"));
    EXPECT_EQ(s.f.model->selectedSize(), appBytes + docBytes);
    EXPECT_EQ(s.label("selectedLabel")->text(), QStringLiteral("Selected: ") + formatByteCount(appBytes + docBytes));
    const auto derivedState
        = [&] { return s.row(QStringLiteral("Derived Data")).data(Qt::CheckStateRole).value<Qt::CheckState>(); };
    EXPECT_EQ(derivedState(), Qt::PartiallyChecked);
    // The last child checks its parent; clearing one clears the parent again.
    s.tick(QStringLiteral("Other"));
    EXPECT_EQ(derivedState(), Qt::Checked);
    EXPECT_EQ(s.f.model->selectedSize(), appBytes + docBytes + s.f.find(QStringLiteral("Other"))->size.bytesOrZero());
    s.tick(QStringLiteral("Other"));
    EXPECT_EQ(derivedState(), Qt::PartiallyChecked);
    EXPECT_EQ(s.f.model->selectedSize(), appBytes + docBytes);
    ASSERT_TRUE(s.button("deletePushButton")->isEnabled());
    EXPECT_EQ(controlsWithoutAccessibleName(s.view), "");

    // Xcode is running: the warning comes first; its "Don't ask again" is stored and
    // "Continue" leads to the confirmation, which the user cancels. The Delete key does what
    // the footer's button does.
    s.f.workspace.running = {QStringLiteral("com.apple.dt.Xcode")};
    XcodeCleanupFooter* footer = s.view->footer();
    s.tree()->setFocus();
    ASSERT_TRUE(pressKey(s.tree(), QKeySequence::Delete));
    ASSERT_TRUE(waitUntil([&] { return footer->isShowingXcodeRunningWarning(); }));
    EXPECT_FALSE(footer->isShowingDeletionConfirmation());
    footer->xcodeRunningWarning()->checkBox()->setChecked(true);
    EXPECT_TRUE(s.f.defaults.boolValue(QStringLiteral("SuppressXcodeIsRunningAlert"), false));
    Screen::buttonIn(footer->xcodeRunningWarning(), QStringLiteral("Continue"))->click();
    ASSERT_TRUE(waitUntil([&] { return footer->isShowingDeletionConfirmation(); }));
    EXPECT_FALSE(footer->deletionConfirmation()->checkBox()->isChecked());
    footer->deletionConfirmation()->reject();
    ASSERT_TRUE(waitUntil([&] { return !footer->isShowingDeletionConfirmation(); }));
    EXPECT_FALSE(s.f.model->cleaning()) << "cancelling deletes nothing";
    EXPECT_TRUE(QFileInfo::exists(s.f.myApp));

    // The warning is not asked again; the confirmation stores its own "Don't ask again" and
    // "Delete" goes ahead.
    s.button("deletePushButton")->click();
    ASSERT_TRUE(waitUntil([&] { return footer->isShowingDeletionConfirmation(); }));
    EXPECT_FALSE(footer->isShowingXcodeRunningWarning());
    footer->deletionConfirmation()->checkBox()->setChecked(true);
    EXPECT_TRUE(s.f.defaults.boolValue(QStringLiteral("SuppressDeleteWarningAlert"), false));
    Screen::buttonIn(footer->deletionConfirmation(), QStringLiteral("Delete"))->click();
    ASSERT_TRUE(waitUntil([&] { return s.f.model->cleaning() || s.f.model->scanning(); }));
    ASSERT_TRUE(s.f.waitForIdle());

    EXPECT_TRUE(overlayWhileCleaning);
    EXPECT_FALSE(rescanWhileBusy) << "no rescan while scanning or cleaning";
    EXPECT_FALSE(s.view->content()->isShowingCleaningOverlay());
    EXPECT_FALSE(QFileInfo::exists(s.f.myApp));
    EXPECT_FALSE(s.row(QStringLiteral("My App")).isValid());
    EXPECT_FALSE(s.row(QStringLiteral("Cache from Xcode 15.4")).isValid());
    EXPECT_TRUE(s.row(QStringLiteral("Cache from Xcode 16.0")).isValid());
    EXPECT_EQ(s.label("selectedLabel")->text(), QStringLiteral("Selected: Zero KB"));
    EXPECT_FALSE(s.button("deletePushButton")->isEnabled());
    EXPECT_EQ(s.toast->text(), QStringLiteral("Completed"));

    // Ctrl+R rescans, as the toolbar's "Rescan" does.
    sawScan = false;
    ASSERT_TRUE(pressKey(s.tree(), QKeySequence(Qt::CTRL | Qt::Key_R)));
    ASSERT_TRUE(waitUntil([&] { return sawScan; }));
    ASSERT_TRUE(s.f.waitForIdle());
}
