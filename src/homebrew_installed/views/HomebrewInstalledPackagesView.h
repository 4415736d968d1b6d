#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

#include "homebrew_catalog/HomebrewPackageRoute.h"
#include "homebrew_installed/HomebrewInstalledPackage.h"

class QButtonGroup;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QToolButton;

namespace quillbay {

class HomebrewCatalogStore;
class HomebrewInstalledPackagesContent;
class HomebrewInstalledPackagesStore;

// The "Installed" page: the kind picker, rescan and search in its title bar, the error
// line of a partial or failed rescan, the content, and a navigation stack of package
// pages on top of it. When it appears it brings up the catalog and then the store.
class HomebrewInstalledPackagesView : public QWidget
{
    Q_OBJECT

public:
    // Builds the page of a package: with the installed row when one was opened from the
    // table, without when a route was followed from another package page.
    using PackagePageFactory = std::function<QWidget*(const HomebrewPackageRoute& route,
                                                      const std::optional<HomebrewInstalledPackage>& installedPackage,
                                                      QWidget* parent)>;

    HomebrewInstalledPackagesView(HomebrewInstalledPackagesStore& store,
                                  HomebrewCatalogStore& catalogStore,
                                  QWidget* parent = nullptr);

    // Replaces the built-in package page (the local sections alone).
    void setPackagePageFactory(PackagePageFactory factory) { m_packagePageFactory = std::move(factory); }

    HomebrewInstalledPackagesContent* content() const { return m_content; }
    // The package pages on the stack, oldest first.
    int navigationDepth() const;
    QWidget* currentPackagePage() const;

public slots:
    void openPackage(const HomebrewInstalledPackage& package);
    void openRoute(const HomebrewPackageRoute& route);
    void goBack();

signals:
    // A package page is about to open, from the table or a followed route.
    void packageRequested(const HomebrewPackageRoute& route);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void push(const HomebrewPackageRoute& route, const std::optional<HomebrewInstalledPackage>& installedPackage);
    void refresh();
    QWidget* defaultPackagePage(const std::optional<HomebrewInstalledPackage>& installedPackage, QWidget* parent);

    HomebrewInstalledPackagesStore& m_store;
    HomebrewCatalogStore& m_catalogStore;
    PackagePageFactory m_packagePageFactory;

    QToolButton* m_back;
    QLabel* m_title;
    QButtonGroup* m_kind;
    QToolButton* m_caskButton;
    QToolButton* m_formulaButton;
    QToolButton* m_rescan;
    QLineEdit* m_search;
    QWidget* m_listPage;
    QWidget* m_errorLine;
    QLabel* m_errorLabel;
    HomebrewInstalledPackagesContent* m_content;
    QStackedWidget* m_navigation;
    QList<QString> m_pageTitles;
};

} // namespace quillbay
