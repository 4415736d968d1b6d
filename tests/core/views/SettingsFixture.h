#pragma once

#include <QAbstractButton>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <memory>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/SettingsView.h"
#include "foundation/Defaults.h"
#include "platform/UserPaths.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

namespace quillbay::test {

// The application as it starts, on a temporary settings file and home folder, with the
// user at the folder panel scripted; and its settings window.
struct SettingsFixture
{
    SettingsFixture() { start(); }

    // A new process over the same settings file and home.
    void restart()
    {
        view.reset();
        app.reset();
        start();
    }

    void start()
    {
        auto scripted = std::make_unique<ScriptedPickers>();
        pickers = scripted.get();
        app = std::make_unique<QuillbayApp>(std::make_unique<SettingsDefaults>(iniPath()), std::move(scripted));
        app->viewModel().setCleanupPlatform(paths(), nullptr);
        view = std::make_unique<SettingsView>(*app);
    }

    QString iniPath() const { return tree.path(QStringLiteral("defaults.ini")); }
    UserPaths paths() const { return UserPaths::forHome(tree.path(QStringLiteral("home"))); }

    // What the settings file on disk says, after the pending writes went out.
    QString fileText()
    {
        dynamic_cast<SettingsDefaults&>(app->defaults()).sync();
        QFile file(iniPath());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    template <typename T> T* find(const QString& name) const { return view->findChild<T*>(name); }

    void click(const QString& buttonName) const
    {
        auto* button = find<QAbstractButton>(buttonName);
        ASSERT_NE(button, nullptr) << buttonName.toStdString();
        ASSERT_TRUE(button->isEnabled()) << buttonName.toStdString();
        button->click();
    }

    // The message box the window shows, once it is up.
    QMessageBox* waitForMessage() const
    {
        QMessageBox* box = nullptr;
        waitUntil([&] {
            box = view->findChild<QMessageBox*>();
            return box && box->isVisible();
        });
        return box;
    }

    TempTree tree;
    ScriptedPickers* pickers = nullptr;
    std::unique_ptr<QuillbayApp> app;
    std::unique_ptr<SettingsView> view;
};

} // namespace quillbay::test
