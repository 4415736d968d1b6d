#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace quillbay {

class XcodeScanLocationsSettingsSection;
struct SettingsStores;

// "Xcode": the Developer folder's authorization, the custom derived data and archive
// folders, and where the release list comes from.
class SettingsXcodeTab : public QWidget
{
    Q_OBJECT

public:
    // The panels of the folder choices are installed by `preparePanels` right before each.
    SettingsXcodeTab(const SettingsStores& stores, std::function<void()> preparePanels, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshDeveloperFolder();
    void refreshLocations();
    QString developerFolderText() const;

    const SettingsStores& m_stores;
    std::function<void()> m_preparePanels;
    QLabel* m_developerFolder;
    QPushButton* m_choose;
    QPushButton* m_remove;
    XcodeScanLocationsSettingsSection* m_derivedData;
    XcodeScanLocationsSettingsSection* m_archives;
    QLabel* m_dataSource = nullptr;
};

} // namespace quillbay
