#pragma once

#include <QAbstractItemView>
#include <QApplication>
#include <QTest>
#include <memory>

#include <gtest/gtest.h>

#include "CatalogServiceFixture.h"
#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "platform/Workspace.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

namespace quillbay::test {

using namespace Qt::StringLiterals;

// The desktop, reduced to the Terminal look-up: which application is installed and
// whether starting it works. There is no Terminal application to start here.
class ScriptedWorkspace final : public Workspace
{
public:
    std::optional<QString> terminalPath;
    std::optional<QString> launchFailure;
    QStringList launched;
    QList<QUrl> opened;

    bool openUrl(const QUrl& url) override
    {
        opened.append(url);
        return true;
    }
    bool revealFiles(const QStringList&) override { return true; }
    std::optional<QString> applicationPath(const QString& identifier) override
    {
        return identifier == u"com.apple.Terminal"_s ? terminalPath : std::nullopt;
    }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return false; }
    std::optional<QString> openApplication(const QString& path) override
    {
        launched.append(path);
        return launchFailure;
    }
};

// A catalog service on loopback with a small published catalog, and a store over a fresh
// cache folder talking to it.
class CatalogViewFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        service.publish(
            u"A"_s,
            {{u"wget"_s, u"Internet file retriever"_s, u"1.24.5"_s, 0, {u"libidn2"_s, u"openssl@3"_s}},
             {u"openssl@3"_s, u"Cryptography and SSL/TLS Toolkit"_s, u"3.4.0"_s},
             {u"libidn2"_s, u"International domain name library"_s},
             {u"curl"_s, u"Get a file from an HTTP server"_s}},
            {{u"firefox"_s, u"Mozilla Firefox"_s, u"Web browser"_s},
             {u"iterm2"_s, u"iTerm2"_s, u"Terminal emulator"_s}},
            {{u"openssl@3"_s, u"900"_s}, {u"curl"_s, u"500"_s}, {u"wget"_s, u"300"_s}, {u"libidn2"_s, u"100"_s}});
        defaults = std::make_unique<SettingsDefaults>(tree.path(u"settings.ini"_s));
        store = makeStore(service.baseURL());
    }

    std::unique_ptr<HomebrewCatalogStore> makeStore(const QString& baseURL)
    {
        return makeCatalogStore(baseURL, tree.path(u"cache"_s), *defaults);
    }

    // Clicks the row as a user does, on the first column's cell.
    static void clickRow(QAbstractItemView* view, int row)
    {
        const QRect cell = view->visualRect(view->model()->index(row, 0));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
    }

    CatalogServiceFixture service;
    TempTree tree;
    ScriptedWorkspace workspace;
    std::unique_ptr<SettingsDefaults> defaults;
    std::unique_ptr<HomebrewCatalogStore> store;
};

} // namespace quillbay::test
