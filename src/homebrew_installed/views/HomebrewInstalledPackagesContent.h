#pragma once

#include <QStackedWidget>

#include "homebrew_installed/HomebrewInstalledPackage.h"

class QPushButton;

namespace quillbay {

class FolderAuthorizationRequiredView;
class HomebrewInstalledPackagesStore;
class HomebrewInstalledPackageTable;
class UnavailablePanel;

// What the installed page shows, tested in this order.
enum class HomebrewInstalledContentState {
    authorizationRequired,
    scanning,
    failed,
    filtering,
    noSearchResults,
    noPackages,
    table,
};

// Chooses and shows one of the content states of the installed page from the store.
class HomebrewInstalledPackagesContent : public QStackedWidget
{
    Q_OBJECT

public:
    explicit HomebrewInstalledPackagesContent(HomebrewInstalledPackagesStore& store, QWidget* parent = nullptr);

    static HomebrewInstalledContentState stateOf(const HomebrewInstalledPackagesStore& store);
    HomebrewInstalledContentState state() const { return m_state; }
    HomebrewInstalledPackageTable* table() const { return m_table; }

signals:
    void openPackage(const HomebrewInstalledPackage& package);

private:
    void refresh();
    void refreshRows();

    HomebrewInstalledPackagesStore& m_store;
    HomebrewInstalledContentState m_state = HomebrewInstalledContentState::authorizationRequired;
    FolderAuthorizationRequiredView* m_authorization;
    QPushButton* m_chooseFolder;
    QWidget* m_scanning;
    UnavailablePanel* m_failed;
    QWidget* m_filtering;
    UnavailablePanel* m_noSearchResults;
    UnavailablePanel* m_noPackages;
    HomebrewInstalledPackageTable* m_table;
};

} // namespace quillbay
