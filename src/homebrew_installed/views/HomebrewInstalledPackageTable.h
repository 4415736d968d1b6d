#pragma once

#include <QTableView>

#include "homebrew_installed/HomebrewInstalledPackage.h"

namespace quillbay {

class HomebrewInstalledPackageTableModel;

// The installed packages of one kind. Selecting a row opens its package at once and
// leaves no row selected, so the same row opens again after coming back.
class HomebrewInstalledPackageTable : public QTableView
{
    Q_OBJECT

public:
    explicit HomebrewInstalledPackageTable(QWidget* parent = nullptr);

    void setPackages(const QList<HomebrewInstalledPackage>& packages);
    HomebrewInstalledPackageTableModel* packageModel() const { return m_model; }

signals:
    void openPackage(const HomebrewInstalledPackage& package);

private:
    void selectedPackageIDChanged(const QString& id);

    HomebrewInstalledPackageTableModel* m_model;
};

} // namespace quillbay
