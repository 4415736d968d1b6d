#include <QUrlQuery>

#include <gtest/gtest.h>

#include "engagement/FeedbackMail.h"
#include "testsupport/ScriptedPanels.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

TEST(FeedbackMailTest, TheAddressCarriesSubjectAndBodyIntact)
{
    struct Case
    {
        const char* name;
        FeedbackMail mail;
        QString subject;
    };
    const Case cases[] = {
        {"no version", {u"support@quillbay.app"_s, u"Quillbay"_s, u""_s, u"15.6"_s}, u"Feedback: Quillbay v--"_s},
        // Query delimiters and non-ASCII in the values must not split or garble the address.
        {"hostile name",
         {u"help+fb@example.com"_s, u"Q&A=1 #2 ü?"_s, u"3.0 beta"_s, u"X & Y"_s},
         u"Feedback: Q&A=1 #2 ü? v3.0 beta"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QUrl url = c.mail.url();
        ASSERT_TRUE(url.isValid());
        EXPECT_EQ(url.scheme(), u"mailto"_s);
        EXPECT_EQ(url.path(), c.mail.recipient);
        const QUrlQuery query(url);
        EXPECT_EQ(query.queryItems(QUrl::FullyDecoded).size(), 2);
        EXPECT_EQ(query.queryItemValue(u"subject"_s, QUrl::FullyDecoded), c.subject);
        const QString body = query.queryItemValue(u"body"_s, QUrl::FullyDecoded);
        const QString rule = u"-----------------------------------------"_s;
        EXPECT_EQ(body,
                  u"Hi there,\n\n[Please type your feedback, bug report, or feature request here]\n\n\n"_s + rule
                      + u"\nApp Name: "_s + c.mail.appName + u"\nApp Version: "_s
                      + (c.mail.appVersion.isEmpty() ? u"--"_s : c.mail.appVersion) + u"\nmacOS Version: "_s
                      + c.mail.systemVersion + u"\n"_s + rule);
        EXPECT_FALSE(url.toEncoded().contains(' ')) << "no raw blanks on the wire";
    }

    // Without a mail program nothing happens visibly; the caller only learns it failed.
    test::RecordingWorkspace workspace;
    const FeedbackMail mail = cases[0].mail;
    EXPECT_TRUE(mail.send(workspace));
    workspace.opensUrls = false;
    EXPECT_FALSE(mail.send(workspace));
    ASSERT_EQ(workspace.openedUrls.size(), 2);
    EXPECT_EQ(workspace.openedUrls.at(1), mail.url());
}
