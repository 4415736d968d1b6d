#pragma once

#include <QWidget>
#include <optional>

#include "homebrew_installed/HomebrewInstalledPackage.h"

class QGroupBox;
class QLabel;
class QPushButton;
class QToolButton;

namespace quillbay {

class HomebrewInstalledPackagesStore;

// The local part of a package page, above the catalog data: the failure of the last
// action, what is installed where, and the upgrade and uninstall commands to copy. The
// program never runs them. Going away clears the store's action failure, so that it does
// not follow the user to the next package.
class HomebrewInstalledPackageDetailSections : public QWidget
{
    Q_OBJECT

public:
    // How long a copy button says "Copied".
    static constexpr int copiedResetMilliseconds = 2000;

    HomebrewInstalledPackageDetailSections(HomebrewInstalledPackagesStore& store,
                                           HomebrewInstalledPackage package,
                                           QWidget* parent = nullptr);
    ~HomebrewInstalledPackageDetailSections() override;

    const HomebrewInstalledPackage& package() const { return m_package; }
    const std::optional<QString>& copiedCommand() const { return m_copiedCommand; }

private:
    void refresh();
    void refreshPackage();
    void copy(const QString& command);
    void refreshCopyButtons();

    HomebrewInstalledPackagesStore& m_store;
    HomebrewInstalledPackage m_package;
    std::optional<QString> m_copiedCommand;

    QGroupBox* m_actionFailed;
    QLabel* m_actionFailedLabel;
    QLabel* m_catalogVersion;
    QLabel* m_statusIcon;
    QLabel* m_statusText;
    QToolButton* m_reveal;
    QPushButton* m_copyUpgrade;
    QPushButton* m_copyUninstall;
};

} // namespace quillbay
