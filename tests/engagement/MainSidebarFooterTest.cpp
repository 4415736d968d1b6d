#include <QAction>
#include <QMenu>
#include <QTemporaryDir>
#include <QToolButton>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "engagement/EngagementPromptStore.h"
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

QStringList visibleButtons(const MainSidebarFooter& footer)
{
    QStringList titles;
    for (auto* button : footer.findChildren<QToolButton*>()) {
        if (!button->isHidden())
            titles << button->text();
    }
    return titles;
}

} // namespace

TEST(MainSidebarFooterTest, ShowsUpdateOnlyForAnOptionalUpdate)
{
    struct Case
    {
        const char* name;
        std::optional<std::pair<bool, bool>> answer; // force, available
        bool showsUpdate;
    };
    const Case cases[] = {
        {"no answer", std::nullopt, false},
        {"update available", std::pair {false, true}, true},
        {"nothing new", std::pair {false, false}, false},
        {"forced (the alert handles it)", std::pair {true, true}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Footer f;
        if (c.answer) {
            ASSERT_TRUE(f.updates.answer(c.answer->first, c.answer->second));
        }
        QStringList expected {u"Settings"_s, u"Leave a Tip"_s, u"More"_s};
        if (c.showsUpdate)
            expected.insert(1, u"Update"_s);
        EXPECT_EQ(visibleButtons(f.footer), expected);
        EXPECT_EQ(f.footer.isUpdateAvailable(), c.showsUpdate);
    }
}

TEST(MainSidebarFooterTest, EveryControlDoesItsJob)
{
    Footer f;
    f.footer.show();
    ASSERT_TRUE(f.updates.answer(false, true, u"https://quillbay.app/download/1.5"_s));
    ASSERT_FALSE(f.button("updateHoverButton")->isHidden()) << "appears when the answer comes";

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
}

TEST(MainSidebarFooterTest, TheReviewQueryReplacesAnyEarlierAction)
{
    struct Case
    {
        QString page, expected;
    };
    const Case cases[] = {
        {u"https://apps.apple.com/app/id1?mt=12"_s, u"https://apps.apple.com/app/id1?mt=12&action=write-review"_s},
        {u"https://apps.apple.com/app/id1?action=view"_s, u"https://apps.apple.com/app/id1?action=write-review"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.page.toStdString());
        EXPECT_EQ(MainSidebarFooter::writeReviewURL(QUrl(c.page)), QUrl(c.expected));
    }
}
