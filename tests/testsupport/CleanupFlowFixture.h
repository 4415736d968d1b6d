#pragma once

#include <QDir>
#include <QSignalSpy>
#include <memory>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "platform/UserPaths.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

namespace quillbay::test {

// A home folder with a real Developer tree (built on demand), real defaults in an INI
// file, and the view model of the Xcode tools wired to scripted panels and a desktop on
// which the test decides what runs.
struct CleanupFlowFixture
{
    TempTree tree;
    QString home = tree.mkdir(QStringLiteral("home"));
    QString developer = tree.path(QStringLiteral("home/Library/Developer"));
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    ScriptedPickers pickers;
    ScriptedAlerts alerts;
    RecordingWorkspace workspace;
    std::unique_ptr<AppViewModel> model;

    CleanupFlowFixture() { makeModel(); }

    void makeModel()
    {
        model = std::make_unique<AppViewModel>(defaults, saved);
        model->setCleanupPlatform(UserPaths::forHome(home), &workspace);
        model->setCleanupPanels(&pickers, &alerts);
    }

    QString xcode(const QString& relative) const { return developer + QStringLiteral("/Xcode/") + relative; }

    static QByteArray derivedDataPlist(const QString& workspacePath)
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
               "<plist version=\"1.0\"><dict><key>WorkspacePath</key><string>"
            + workspacePath.toUtf8() + "</string></dict></plist>\n";
    }

    // A derived data folder with an info.plist and `bytes` of build products.
    QString addDerivedData(const QString& folderName, qint64 bytes, const QString& root = QString())
    {
        const QString base = root.isEmpty() ? QStringLiteral("home/Library/Developer/Xcode/DerivedData") : root;
        tree.writeFile(base + QLatin1Char('/') + folderName + QStringLiteral("/info.plist"),
                       derivedDataPlist(QStringLiteral("/Users/me/") + folderName + QStringLiteral(".xcodeproj")));
        tree.writeSizedFile(base + QLatin1Char('/') + folderName + QStringLiteral("/Build/Products/app.o"), bytes);
        return tree.path(base + QLatin1Char('/') + folderName);
    }

    // The standard tree: the Xcode folder with two derived data projects, documentation
    // for two Xcode versions (one of them in two format folders) and one device log.
    void buildDeveloperTree()
    {
        tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/iOS DeviceSupport"));
        addDerivedData(QStringLiteral("My_App-aaaa"), 200000);
        addDerivedData(QStringLiteral("Other-bbbb"), 50000);
        tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData/ModuleCache"));
        tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DocumentationCache/v1/15.4/index"), 30000);
        tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DocumentationCache/v2/15.4/index"), 10000);
        tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DocumentationCache/v2/16.0/index"), 20000);
        tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/iOS Device Logs/Logs 16.0 2024.db"), 4000);
    }

    bool waitForIdle(int ms = 15000)
    {
        return waitUntil([&] { return !model->scanning() && !model->cleaning(); }, ms);
    }

    // The node of the tree whose label is `label`, searched depth first.
    const XcodeFileProperties* find(const QString& label) const
    {
        std::function<const XcodeFileProperties*(const std::vector<XcodeFileProperties>&)> walk
            = [&](const std::vector<XcodeFileProperties>& nodes) -> const XcodeFileProperties* {
            for (const XcodeFileProperties& node : nodes) {
                if (node.label == label)
                    return &node;
                if (node.children) {
                    if (const XcodeFileProperties* hit = walk(*node.children))
                        return hit;
                }
            }
            return nullptr;
        };
        return walk(model->localFiles());
    }
};

} // namespace quillbay::test
