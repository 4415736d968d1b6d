#pragma once

#include <QUrl>
#include <QWidget>
#include <functional>

#include "engagement/views/SidebarHoverButton.h"

class QMenu;

namespace quillbay {

class EngagementPromptStore;
class VersionManager;

// The controls under the sidebar: "Settings", "Update" (only while an optional update is
// known), "Leave a Tip" and the "More" menu.
class MainSidebarFooter : public QWidget
{
    Q_OBJECT

public:
    struct Actions
    {
        std::function<void()> openSettings;
        std::function<void(const QUrl&)> openUrl;
        std::function<void()> sendFeedbackMail;
        std::function<void()> quit;
        QUrl reviewPage; // the store's review page of this application
        QUrl privacyPolicy; // the application's web page, ".../privacy"
        QUrl termsOfUse; // the application's web page, ".../terms"
    };

    MainSidebarFooter(VersionManager& versionManager,
                      EngagementPromptStore& engagementPromptStore,
                      Actions actions,
                      const SymbolIconProvider& icons = {},
                      QWidget* parent = nullptr);

    bool isUpdateAvailable() const;
    QMenu* moreMenu() const { return m_moreMenu; }

    // The store's review page with the query that opens the review form.
    static QUrl writeReviewURL(const QUrl& reviewPage);

private:
    void showUpdate();
    void showTip();
    void refreshUpdate();

    VersionManager& m_versionManager;
    EngagementPromptStore& m_engagementPromptStore;
    Actions m_actions;
    SidebarHoverButton* m_updateButton;
    QMenu* m_moreMenu;
};

} // namespace quillbay
