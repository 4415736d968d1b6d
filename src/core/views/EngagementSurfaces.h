#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace quillbay {

class ForceUpdateAlert;
class MainSidebarFooter;
class PurchaseView;
class QuillbayApp;

// What the updates and engagement parts put on the main window: the sidebar footer, the
// tip sheet (whenever the engagement store asks for it) and the forced-update alert
// (whenever a required update is known).
class EngagementSurfaces : public QObject
{
    Q_OBJECT

public:
    EngagementSurfaces(QuillbayApp& app, QWidget* window);

    MainSidebarFooter* footer() const { return m_footer; }
    PurchaseView* purchaseView() const;
    ForceUpdateAlert* forceUpdateAlert() const;

signals:
    void settingsRequested();

private:
    void presentPurchaseView(bool presenting);
    void presentForceUpdateAlert(bool presented);

    QuillbayApp& m_app;
    QWidget* m_window;
    MainSidebarFooter* m_footer;
    QPointer<PurchaseView> m_purchaseView;
    QPointer<ForceUpdateAlert> m_forceUpdateAlert;
};

} // namespace quillbay
