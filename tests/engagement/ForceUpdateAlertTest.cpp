#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "engagement/views/ForceUpdateAlert.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

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
