#include <QUrlQuery>

#include <gtest/gtest.h>

#include "engagement/FeedbackMail.h"
#include "testsupport/ScriptedPanels.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

TEST(FeedbackMailTest, TheAddressCarriesSubjectAndBodyIntact)
{
    // Query delimiters and non-ASCII in the values must not split or garble the address; a
    // missing version reads "--".
    const FeedbackMail mail {u"help+fb@example.com"_s, u"Q&A=1 #2 ü?"_s, u""_s, u"X & Y"_s};
    const QUrl url = mail.url();
    ASSERT_TRUE(url.isValid());
    EXPECT_EQ(url.scheme(), u"mailto"_s);
    EXPECT_EQ(url.path(), mail.recipient);
    const QUrlQuery query(url);
    EXPECT_EQ(query.queryItems(QUrl::FullyDecoded).size(), 2);
    EXPECT_EQ(query.queryItemValue(u"subject"_s, QUrl::FullyDecoded), u"Feedback: Q&A=1 #2 ü? v--"_s);
    const QString rule = u"-----------------------------------------"_s;
    EXPECT_EQ(query.queryItemValue(u"body"_s, QUrl::FullyDecoded),
              u"Hi there,\n\n[Please type your feedback, bug report, or feature request here]\n\n\n"_s + rule
                  + u"\nApp Name: Q&A=1 #2 ü?\nApp Version: --\nmacOS Version: X & Y\n"_s + rule);
    EXPECT_FALSE(url.toEncoded().contains(' ')) << "no raw blanks on the wire";

    // Without a mail program nothing happens visibly; the caller only learns it failed.
    test::RecordingWorkspace workspace;
    EXPECT_TRUE(mail.send(workspace));
    workspace.opensUrls = false;
    EXPECT_FALSE(mail.send(workspace));
    ASSERT_EQ(workspace.openedUrls.size(), 2);
    EXPECT_EQ(workspace.openedUrls.at(1), mail.url());
}
