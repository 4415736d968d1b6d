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
        return identifier == QStringLiteral("com.apple.Terminal") ? terminalPath : std::nullopt;
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
    static inline const QByteArray signingKey {"quillbay-development-catalog-signing-key-0123456789abcdef0123456"};

    void SetUp() override
    {
        service.publish(
            QStringLiteral("A"),
            {{QStringLiteral("wget"),
              QStringLiteral("Internet file retriever"),
              QStringLiteral("1.24.5"),
              0,
              {QStringLiteral("libidn2"), QStringLiteral("openssl@3")}},
             {QStringLiteral("openssl@3"), QStringLiteral("Cryptography and SSL/TLS Toolkit"), QStringLiteral("3.4.0")},
             {QStringLiteral("libidn2"), QStringLiteral("International domain name library")},
             {QStringLiteral("curl"), QStringLiteral("Get a file from an HTTP server")}},
            {{QStringLiteral("firefox"), QStringLiteral("Mozilla Firefox"), QStringLiteral("Web browser")},
             {QStringLiteral("iterm2"), QStringLiteral("iTerm2"), QStringLiteral("Terminal emulator")}},
            {{QStringLiteral("openssl@3"), QStringLiteral("900")},
             {QStringLiteral("curl"), QStringLiteral("500")},
             {QStringLiteral("wget"), QStringLiteral("300")},
             {QStringLiteral("libidn2"), QStringLiteral("100")}});
        defaults = std::make_unique<SettingsDefaults>(tree.path(QStringLiteral("settings.ini")));
        store = makeStore(service.baseURL());
    }

    std::unique_ptr<HomebrewCatalogStore> makeStore(const QString& baseURL)
    {
        HomebrewAPIClient::Configuration configuration;
        configuration.baseURL = QUrl(baseURL);
        configuration.signingSecret = signingKey;
        configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
        configuration.currentDate = [] { return QDateTime::currentDateTimeUtc(); };
        return std::make_unique<HomebrewCatalogStore>(
            std::make_unique<HomebrewAPIClient>(
                configuration, std::make_unique<HomebrewCacheService>(tree.path(QStringLiteral("cache")))),
            HomebrewCatalogProcessor(), *defaults);
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
