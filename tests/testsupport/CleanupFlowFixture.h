#pragma once

#include <QDir>
#include <QSignalSpy>
#include <memory>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "platform/UserPaths.h"
#include "testsupport/DeveloperTreeBuilder.h"
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

    // A derived data folder "<name>-<hash>" with an info.plist and `bytes` of build
    // products, in the default folder or under `root`.
    QString addDerivedData(const QString& name, qint64 bytes, const QString& root = QString())
    {
        return DeveloperTreeBuilder(developer).addDerivedData(
            name, QStringLiteral("/Users/me/") + name + QStringLiteral(".xcodeproj"), bytes,
            DeveloperTreeBuilder::PlistFormat::xml, root);
    }

    // The standard tree: the Xcode folder with two derived data projects, documentation
    // for two Xcode versions (one of them in two format folders) and one device log.
    void buildDeveloperTree()
    {
        DeveloperTreeBuilder builder(developer);
        builder.mkdir(QStringLiteral("Xcode/iOS DeviceSupport"));
        builder.mkdir(QStringLiteral("Xcode/DerivedData/ModuleCache"));
        myApp = addDerivedData(QStringLiteral("My_App"), 200000);
        other = addDerivedData(QStringLiteral("Other"), 50000);
        docs154a = builder.addDocumentationCache(QStringLiteral("v1"), QStringLiteral("15.4"), 30000);
        docs154b = builder.addDocumentationCache(QStringLiteral("v2"), QStringLiteral("15.4"), 10000);
        docs160 = builder.addDocumentationCache(QStringLiteral("v2"), QStringLiteral("16.0"), 20000);
        builder.addDeviceLog(QStringLiteral("Logs 16.0 2024.db"), 4000);
    }

    // Paths of the standard tree.
    QString myApp;
    QString other;
    QString docs154a;
    QString docs154b;
    QString docs160;

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
