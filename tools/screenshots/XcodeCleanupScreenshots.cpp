#include <QApplication>
#include <QTreeView>

#include "testsupport/CleanupFlowFixture.h"
#include "tools/screenshots/Screenshots.h"
#include "xcode_cleanup/views/CleanupView.h"
#include "xcode_cleanup/views/XcodeCleanupContent.h"

namespace quillbay::screenshots {

namespace {

struct Shot
{
    test::CleanupFlowFixture f;
    std::unique_ptr<CleanupView> view;

    explicit Shot(bool withTree)
    {
        if (withTree)
            f.buildDeveloperTree();
    }

    // `beforeShow` runs once the screen exists but before it appears, which is when its
    // first request (and so the scan) starts.
    void open(const std::function<void()>& beforeShow = {})
    {
        view = std::make_unique<CleanupView>(*f.model);
        f.model->setCleanupPanels(&f.pickers, &f.alerts);
        view->resize(960, 620);
        if (beforeShow)
            beforeShow();
        view->show();
    }

    bool authorizeAndScan()
    {
        return test::waitUntil([&] { return f.model->hasFileManager(); }) && f.waitForIdle();
    }
};

} // namespace

void renderXcodeCleanupScreenshots(const QString& outDir)
{
    {
        Shot shot(false);
        shot.open();
        test::waitUntil([&] { return !shot.f.model->isRequestingDeveloperFolderAuthorization(); });
        save(shot.view.get(), outDir, QStringLiteral("xcode-cleanup-unauthorized"));
    }
    {
        // The six locations land at once, without sizes; the shot is taken before the
        // first location's scan can come back.
        Shot shot(true);
        bool taken = false;
        shot.open([&] {
            QObject::connect(shot.f.model.get(), &AppViewModel::localFilesChanged, shot.view.get(), [&] {
                if (!taken && shot.f.model->localFiles().size() == 6 && !shot.f.model->localFiles()[0].size.isKnown()) {
                    taken = true;
                    save(shot.view.get(), outDir, QStringLiteral("xcode-cleanup-scanning"));
                }
            });
        });
        shot.authorizeAndScan();
    }
    {
        Shot shot(true);
        shot.open();
        shot.authorizeAndScan();
        QTreeView* tree = shot.view->content()->treeView();
        tree->expandAll();
        for (const QString& label : {QStringLiteral("My App"), QStringLiteral("Cache from Xcode 15.4")}) {
            if (const XcodeFileProperties* node = shot.f.find(label))
                shot.f.model->setSelected(node->id, true);
        }
        save(shot.view.get(), outDir, QStringLiteral("xcode-cleanup-selection"));
        // The overlay is up from the moment the clean starts until its result lands.
        shot.f.model->clean();
        save(shot.view.get(), outDir, QStringLiteral("xcode-cleanup-cleaning"));
        shot.f.waitForIdle();
    }
    {
        Shot shot(false);
        shot.f.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode"));
        shot.open();
        shot.authorizeAndScan();
        save(shot.view.get(), outDir, QStringLiteral("xcode-cleanup-empty"));
    }
}

} // namespace quillbay::screenshots
