#include <gtest/gtest.h>

#include "homebrew_catalog/HomebrewAPIClient.h"
#include "homebrew_catalog/HomebrewEndpoint.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// The development key of the default build (QUILLBAY_CATALOG_KEY).
const QByteArray developmentKey("quillbay-development-catalog-signing-key-0123456789abcdef0123456");

std::unique_ptr<HomebrewAPIClient> clientAt(const QString& base)
{
    HomebrewAPIClient::Configuration configuration;
    configuration.baseURL = QUrl(base);
    configuration.signingSecret = developmentKey;
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
        {"snapshot path kept whole, ':' and '/' sanitized in the stem",
         HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula, u"/v1/catalog/snapshots/a:b/formula.json"_s),
         u"/v1/catalog/snapshots/a:b/formula.json"_s,
         u"proxy-v1-formula-catalog--v1-catalog-snapshots-a-b-formula.json"_s},
        {"slash and plus", HomebrewEndpoint::caskDetail(u"font/a+b"_s), u"/v1/details/cask/font%2Fa%2Bb.json"_s,
         u"proxy-v1-cask-detail-font-a+b"_s},
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
    const auto client = clientAt(u"http://user@127.0.0.1:8765/ignored/base?x=1#frag"_s);
    const auto url = client->requestURL(HomebrewEndpoint::formulaDetail(u"openssl@3"_s));
    ASSERT_TRUE(url.has_value());
    EXPECT_EQ(url->toString(QUrl::FullyEncoded), u"http://127.0.0.1:8765/v1/details/formula/openssl%403.json");
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
