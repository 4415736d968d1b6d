#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/Alerts.h"

namespace quillbay {

// Alerts as window-modal message boxes; the answer comes back through the box's signal,
// never through a nested event loop.
class WidgetAlerts final : public Alerts
{
public:
    explicit WidgetAlerts(QWidget* window = nullptr);

    void setWindow(QWidget* window) { m_window = window; }
    void show(const Request& request, Answer answer) override;

private:
    QPointer<QWidget> m_window;
};

} // namespace quillbay
