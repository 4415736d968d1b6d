#pragma once

#include <QGroupBox>

class QLabel;
class QPushButton;

namespace quillbay {

class HomebrewInstalledPackagesStore;

// The "Installed" section of the Homebrew settings tab: the Homebrew root (or "Not
// Selected") with "Choose" and "Remove Authorization". Neither touches installed software.
class HomebrewInstalledSettingsSection : public QGroupBox
{
    Q_OBJECT

public:
    explicit HomebrewInstalledSettingsSection(HomebrewInstalledPackagesStore& store, QWidget* parent = nullptr);

private:
    void refresh();

    HomebrewInstalledPackagesStore& m_store;
    QLabel* m_root;
    QPushButton* m_choose;
    QPushButton* m_remove;
};

} // namespace quillbay
