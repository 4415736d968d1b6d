#pragma once

#include <QWidget>

class QComboBox;
class QLabel;

namespace quillbay {

struct SettingsStores;

// "General": the appearance, the reset of the cleanup dialogs' "Don't ask again", and the
// saved total with its reset and the tip.
class SettingsGeneralTab : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsGeneralTab(const SettingsStores& stores, QWidget* parent = nullptr);

private:
    void showAppearance(qint64 index);
    void showTotal(qint64 totalBytes);

    const SettingsStores& m_stores;
    QComboBox* m_appearance;
    QLabel* m_total;
};

} // namespace quillbay
