#include <gtest/gtest.h>

#include "VersionChecking/VersionCheckSigning.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// 64 bytes, the length the service agrees on. The client test signs with it too.
const QString kSecret = u"0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef"_s;

} // namespace

// The expected values were computed outside this program with
//   printf '<the seven lines>' | openssl dgst -sha256 -hmac '<key>'
// and, for the empty key that the openssl tool refuses, with Python's
//   hmac.new(b'', b'GET\n/\n\n\n\n\n5', hashlib.sha256).hexdigest()
TEST(VersionCheckSigningTest, MatchesIndependentlyComputedSignatures)
{
    struct Case
    {
        QString secret;
        VersionCheckSigning::SignedFields fields;
        QString expectedText;
        QByteArray expectedSignature;
    };
    const Case cases[] = {
        {kSecret,
         {u"GET"_s, u"/service/api/app-version/check"_s, u" ABC "_s, u"macOS"_s, u"Prod\n"_s, u"1.2.3 "_s,
          u"1700000000"_s},
         u"GET\n/service/api/app-version/check\nabc\nmacos\nprod\n1.2.3\n1700000000"_s,
         "cb23fc48408574e3fe8cd10b5e05e4602ebbfa3ab15449345f4c89bdee8cb5ab"},
        // Non-ASCII key and fields: lowercasing is Unicode-aware and the bytes are UTF-8.
        {u"clé-ünïcode"_s,
         {u"GET"_s, u"/api/app-version/check"_s, u"\t ÉVÉ "_s, u"macos"_s, u" Beta\r\n"_s, u" 3.1 (β)\t"_s, u"0"_s},
         u"GET\n/api/app-version/check\névé\nmacos\nbeta\n3.1 (β)\n0"_s,
         "6ce60cd1ed18e71cf903f2d2b4ebe72467e4e1abc4d2cb7c7428dbc5f6e09277"},
        {u""_s,
         {u"GET"_s, u"/"_s, u""_s, u""_s, u""_s, u""_s, u"5"_s},
         u"GET\n/\n\n\n\n\n5"_s,
         "678a5099bc7ef2acb5264b714da4899785155bbbf63af293ac9a3f10a4ef47f1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expectedText.toStdString());
        EXPECT_EQ(VersionCheckSigning::signedText(c.fields), c.expectedText);
        const QByteArray signature = VersionCheckSigning::signature(c.secret, c.fields);
        EXPECT_EQ(signature, c.expectedSignature);
        EXPECT_EQ(signature.size(), 64);
    }
}
