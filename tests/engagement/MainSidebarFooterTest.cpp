#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTemporaryDir>
#include <QToolButton>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/views/ForceUpdateAlert.h"
#include "engagement/views/MainSidebarFooter.h"
#include "foundation/Defaults.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

struct Footer
{
    QTemporaryDir dir;
    SettingsDefaults defaults {dir.filePath(u"d.ini"_s)};
    EngagementPromptStore engagement {defaults, u"1.4.2"_s};
    test::UpdateFixture updates;
    QStringList calls;
    QList<QUrl> openedUrls;
    MainSidebarFooter footer {updates.manager, engagement,
                              MainSidebarFooter::Actions {
                                  [this] { calls << u"settings"_s; },
                                  [this](const QUrl& url) { openedUrls << url; },
                                  [this] { calls << u"mail"_s; },
                                  [this] { calls << u"quit"_s; },
                                  QUrl(u"https://apps.apple.com/app/id6443543821"_s),
                                  QUrl(u"https://quillbay.app/privacy"_s),
                                  QUrl(u"https://quillbay.app/terms"_s),
                              }};

    QToolButton* button(const char* name) const { return footer.findChild<QToolButton*>(QLatin1String(name)); }
};

} // namespace

TEST(MainSidebarFooterTest, EveryControlDoesItsJob)
{
    Footer f;
    f.footer.show();
    EXPECT_TRUE(f.button("updateHoverButton")->isHidden()) << "no update before an answer";
    ASSERT_TRUE(f.updates.answer(false, false));
    EXPECT_TRUE(f.button("updateHoverButton")->isHidden()) << "nothing new";
    ASSERT_TRUE(f.updates.answer(false, true, u"https://quillbay.app/download/1.5"_s));
    ASSERT_FALSE(f.button("updateHoverButton")->isHidden()) << "appears when the answer comes";
    EXPECT_TRUE(f.footer.isUpdateAvailable());

    f.button("settingsHoverButton")->click();
    EXPECT_EQ(f.calls, QStringList {u"settings"_s});

    f.button("updateHoverButton")->click();
    EXPECT_EQ(f.updates.opened, QList<QUrl> {QUrl(u"https://quillbay.app/download/1.5"_s)});

    QMenu* menu = f.footer.moreMenu();
    EXPECT_EQ(f.button("moreHoverButton")->menu(), menu);
    QStringList titles;
    // What the menu shows: mnemonic markers resolved, so "&&" must read as one "&".
    for (QAction* action : menu->actions())
        titles << action->iconText();
    EXPECT_EQ(titles,
              (QStringList {u"Rate Me"_s, u"Help & Support"_s, u"Privacy Policy"_s, u"Terms of Use"_s, u"Quit"_s}));
    for (QAction* action : menu->actions())
        action->trigger();
    EXPECT_EQ(f.openedUrls,
              (QList<QUrl> {QUrl(u"https://apps.apple.com/app/id6443543821?action=write-review"_s),
                            QUrl(u"https://quillbay.app/privacy"_s), QUrl(u"https://quillbay.app/terms"_s)}));
    EXPECT_EQ(f.calls, (QStringList {u"settings"_s, u"mail"_s, u"quit"_s}));

    // The review query replaces an earlier action and keeps the other items.
    EXPECT_EQ(MainSidebarFooter::writeReviewURL(QUrl(u"https://apps.apple.com/app/id1?mt=12&action=view"_s)),
              QUrl(u"https://apps.apple.com/app/id1?mt=12&action=write-review"_s));
}

// Quit is clicked in the shell test, with the alert raised by a real check.
TEST(ForceUpdateAlertTest, EveryWayOutEndsTheProcess)
{
    struct Case
    {
        const char* name;
        QString updateURL;
        std::function<void(ForceUpdateAlert&)> act;
        QList<QUrl> expectedOpened;
    };
    const Case cases[] = {
        {"Update Now",
         u"https://u.test/get"_s,
         [](ForceUpdateAlert& a) { a.updateNowButton()->click(); },
         {QUrl(u"https://u.test/get"_s)}},
        {"Update Now with an address that does not parse",
         u"http://exa mple.com/%zz"_s,
         [](ForceUpdateAlert& a) { a.updateNowButton()->click(); },
         {}},
        {"Escape",
         u"https://u.test/get"_s,
         [](ForceUpdateAlert& a) {
             QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
             QApplication::sendEvent(&a, &escape);
         },
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::UpdateFixture updates;
        ASSERT_TRUE(updates.answer(true, false, c.updateURL));
        int quits = 0;
        ForceUpdateAlert alert(updates.manager, u"Quillbay"_s, [&] { ++quits; });
        EXPECT_EQ(alert.windowModality(), Qt::ApplicationModal);
        alert.show();
        c.act(alert);
        EXPECT_EQ(quits, 1);
        EXPECT_EQ(updates.opened, c.expectedOpened);
    }
}
