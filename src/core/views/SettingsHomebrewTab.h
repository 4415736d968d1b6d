#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;

namespace quillbay {

struct SettingsStores;

// "Homebrew": the catalog's refresh dates and "Force Refresh", the authorized Homebrew
// root, and the cache cleanup's folder.
class SettingsHomebrewTab : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsHomebrewTab(const SettingsStores& stores, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* errorRow(QLabel*& text, const QString& objectName);
    QWidget* buildCatalogSection();
    QWidget* buildInstalledSection();
    void refreshCatalog();
    void refreshInstalled();

    const SettingsStores& m_stores;
    QLabel* m_lastChecked = nullptr;
    QLabel* m_lastSuccess = nullptr;
    QWidget* m_catalogErrorRow = nullptr;
    QLabel* m_catalogError = nullptr;
    QPushButton* m_forceRefresh = nullptr;
    QLabel* m_root = nullptr;
    QWidget* m_rootErrorRow = nullptr;
    QLabel* m_rootError = nullptr;
    QPushButton* m_chooseRoot = nullptr;
    QPushButton* m_removeRoot = nullptr;
    QList<QLabel*> m_warningIcons;
};

} // namespace quillbay
