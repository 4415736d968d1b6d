#pragma once

#include <QPointer>
#include <QWidget>
#include <optional>

#include "homebrew_installed/HomebrewInstalledPackage.h"

class QGroupBox;
class QLabel;
class QPushButton;

namespace quillbay {

class HomebrewInstalledPackagesStore;

// What the package page shows above the catalog data for an installed package: a failed
// action, where and which version lies on disk, and the package commands to copy. The
// program only copies these commands; it never runs brew.
class HomebrewInstalledPackageDetailSections final : public QWidget
{
    Q_OBJECT

public:
    HomebrewInstalledPackageDetailSections(HomebrewInstalledPackagesStore& store,
                                           HomebrewInstalledPackage package,
                                           QWidget* parent = nullptr);
    // A failure shown here belongs to this package; it goes with the sections.
    ~HomebrewInstalledPackageDetailSections() override;

    const std::optional<QString>& copiedCommand() const { return m_copiedCommand; }
    void copyCommand(const QString& command);

private:
    QPushButton* addCopyRow(QGroupBox* box, const QString& title, const QString& command, const QString& label);
    void refresh();

    HomebrewInstalledPackagesStore& m_store;
    HomebrewInstalledPackage m_package;
    std::optional<QString> m_copiedCommand;
    QGroupBox* m_actionFailed;
    QLabel* m_actionFailedLabel;
    QPushButton* m_copyUpgrade = nullptr;
    QPushButton* m_copyUninstall = nullptr;
};

} // namespace quillbay
