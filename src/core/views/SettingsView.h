#pragma once

#include <QDialog>
#include <memory>

#include "core/views/SettingsStores.h"

class QTabWidget;

namespace quillbay {

class QuillbayApp;
class WidgetAlerts;

// The settings window: every stored choice of every tool in three tabs, "General",
// "Xcode" and "Homebrew". It is modeless, changes apply as they are made, and Escape
// closes it. Showing it brings the catalog up to date and restores the Homebrew folders,
// as each tool's own screen would.
class SettingsView : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsView(QuillbayApp& app, QWidget* parent = nullptr);
    explicit SettingsView(const SettingsStores& stores, QWidget* parent = nullptr);
    ~SettingsView() override;

    QTabWidget* tabs() const { return m_tabs; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void presentSettingAlert();
    void preparePanels();

    SettingsStores m_stores;
    std::unique_ptr<WidgetAlerts> m_alerts;
    QTabWidget* m_tabs;
    bool m_isShowingAlert = false;
};

} // namespace quillbay
