#pragma once

#include <QGroupBox>

class QLabel;
class QPushButton;

namespace quillbay {

class HomebrewCacheCleanupStore;

// The "Cleanup" section of the Homebrew settings tab: the cache folder (or "Not
// Selected"), the last error, and "Choose" or "Remove Authorization".
class HomebrewCacheSettingsSection : public QGroupBox
{
    Q_OBJECT

public:
    explicit HomebrewCacheSettingsSection(HomebrewCacheCleanupStore& store, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void elideFolder();

    HomebrewCacheCleanupStore& m_store;
    QString m_folderText;
    QLabel* m_folder;
    QWidget* m_errorRow;
    QLabel* m_error;
    QPushButton* m_action;
    QLabel* m_footer;
};

} // namespace quillbay
