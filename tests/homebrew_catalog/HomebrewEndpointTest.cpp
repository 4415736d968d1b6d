#include <QNetworkRequest>

#include <gtest/gtest.h>

#include "homebrew_catalog/HomebrewAPIClient.h"
#include "homebrew_catalog/HomebrewEndpoint.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// The development key of the default build (QUILLBAY_CATALOG_KEY).
const QByteArray developmentKey("quillbay-development-catalog-signing-key-0123456789abcdef0123456");

std::unique_ptr<HomebrewAPIClient>
clientAt(const QString& base, qint64 epochSeconds, const QByteArray& key = developmentKey)
{
    HomebrewAPIClient::Configuration configuration;
    configuration.baseURL = QUrl(base);
    configuration.signingSecret = key;
    configuration.now = [epochSeconds] { return QDateTime::fromMSecsSinceEpoch(epochSeconds * 1000 + 999, Qt::UTC); };
    return std::make_unique<HomebrewAPIClient>(configuration, std::make_unique<HomebrewCacheService>(QString()));
}

} // namespace

TEST(HomebrewEndpointTest, PathsAndCacheStems)
{
    struct Row
    {
        const char* name;
        HomebrewEndpoint endpoint;
        QString path;
        QString stem;
    };
    const Row rows[] = {
        {"manifest", HomebrewEndpoint::catalogManifest(), u"/v1/catalog/manifest.json"_s,
         u"proxy-v1-catalog-manifest"_s},
        {"snapshot path kept whole, ':' and '/' sanitized in the stem",
         HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula, u"/v1/catalog/snapshots/a:b/formula.json"_s),
         u"/v1/catalog/snapshots/a:b/formula.json"_s,
         u"proxy-v1-formula-catalog--v1-catalog-snapshots-a-b-formula.json"_s},
        {"at sign", HomebrewEndpoint::formulaDetail(u"openssl@3"_s), u"/v1/details/formula/openssl%403.json"_s,
         u"proxy-v1-formula-detail-openssl@3"_s},
        {"slash and plus", HomebrewEndpoint::caskDetail(u"font/a+b"_s), u"/v1/details/cask/font%2Fa%2Bb.json"_s,
         u"proxy-v1-cask-detail-font-a+b"_s},
        {"non-ASCII letter stays, blank becomes %20", HomebrewEndpoint::formulaDetail(u"caf\u00e9 x"_s),
         u"/v1/details/formula/caf\u00e9%20x.json"_s, u"proxy-v1-formula-detail-caf\u00e9 x"_s},
        {"unreserved marks pass", HomebrewEndpoint::caskDetail(u"a-b.c_d~e"_s), u"/v1/details/cask/a-b.c_d~e.json"_s,
         u"proxy-v1-cask-detail-a-b.c_d~e"_s},
        {"percent and emoji per UTF-8 byte", HomebrewEndpoint::caskDetail(u"50%\U0001F600"_s),
         u"/v1/details/cask/50%25%F0%9F%98%80.json"_s, u"proxy-v1-cask-detail-50%\U0001F600"_s},
        {"lone surrogate encodes to nothing", HomebrewEndpoint::caskDetail(QString(QChar(0xD800))),
         u"/v1/details/cask/.json"_s, u"proxy-v1-cask-detail-"_s + QChar(0xD800)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.endpoint.path(), row.path);
        EXPECT_EQ(row.endpoint.cacheStem(), row.stem);
    }
}

TEST(HomebrewEndpointTest, RequestURLReplacesPathQueryAndFragmentOfTheBase)
{
    const auto client = clientAt(u"http://user@127.0.0.1:8765/ignored/base?x=1#frag"_s, 0);
    const auto url = client->requestURL(HomebrewEndpoint::formulaDetail(u"openssl@3"_s));
    ASSERT_TRUE(url.has_value());
    EXPECT_EQ(url->toString(QUrl::FullyEncoded), u"http://127.0.0.1:8765/v1/details/formula/openssl%403.json");

    const auto unicode = client->requestURL(HomebrewEndpoint::formulaDetail(u"caf\u00e9"_s));
    ASSERT_TRUE(unicode.has_value());
    EXPECT_EQ(unicode->path(QUrl::FullyEncoded), u"/v1/details/formula/caf%C3%A9.json");
}

// Expected values computed once, independently of this code, with OpenSSL:
//   printf 'GET\n<path>\n<timestamp>' | openssl dgst -sha256 -hmac "<key>"
TEST(HomebrewEndpointTest, SignatureMatchesOpenSSL)
{
    struct Row
    {
        const char* name;
        QByteArray key;
        QByteArray path;
        qint64 timestamp;
        QByteArray expected;
    };
    const Row rows[] = {
        {"manifest", developmentKey, "/v1/catalog/manifest.json", 1700000000,
         "49e142bcd713c6c7379e1ee84416385c1e1593bae0d9cf93fb7e484cb9313647"},
        {"encoded at sign", developmentKey, "/v1/details/formula/openssl%403.json", 1700000000,
         "7e171df91fd514a3e1c36f5d1a309ca166a11dcd01040610a4d0ee000141c870"},
        {"negative timestamp", developmentKey, "/v1/details/formula/openssl%403.json", -5,
         "50c1ab80ccdd959d022d4ef03262a0220126824ff5b178766fe35f482ea27414"},
        {"another key", "another-key", "/v1/catalog/manifest.json", 1700000000,
         "ab3b30bcad65a886c8c5ea40b216f52a7124a4b6b657ef0fe60b3d5e44fdfb3a"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(HomebrewAPIClient::signature(row.key, row.path, row.timestamp), row.expected);
    }
}

TEST(HomebrewEndpointTest, SignSetsHeadersFromTheWirePathAndTruncatedSeconds)
{
    const auto client = clientAt(u"http://127.0.0.1:1"_s, 1700000000);
    QNetworkRequest request(*client->requestURL(HomebrewEndpoint::formulaDetail(u"openssl@3"_s)));
    client->sign(request);
    EXPECT_EQ(request.rawHeader("x-quillbay-timestamp"), "1700000000");
    EXPECT_EQ(request.rawHeader("x-quillbay-signature"),
              "7e171df91fd514a3e1c36f5d1a309ca166a11dcd01040610a4d0ee000141c870");

    QNetworkRequest empty;
    client->sign(empty);
    EXPECT_FALSE(empty.hasRawHeader("x-quillbay-signature"));
}
