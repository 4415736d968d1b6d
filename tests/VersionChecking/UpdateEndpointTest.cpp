#include <QUrlQuery>

#include <gtest/gtest.h>

#include "VersionChecking/VersionCheckSigning.h"
#include "update/UpdateEndpoint.h"

using namespace quillbay;
using namespace quillbay::services;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kNow = 1'750'000'000;

UpdateEndpointConfig config()
{
    UpdateEndpointConfig c;
    c.signatureSecret = u"endpoint-secret"_s;
    c.appID = u"6443543821"_s;
    c.latestVersion = u"2.3.0"_s;
    c.updateURL = u"https://apps.apple.com/app/id6443543821"_s;
    c.versionsThatMustUpdate = {u"1.0.0"_s, u"1.0.1"_s};
    c.clock = [] { return kNow; };
    return c;
}

struct Request
{
    QString appID = u"6443543821"_s;
    QString version = u"2.0.0"_s;
    qint64 timestamp = kNow;
    QString signedVersion = {}; // what the signature covers; the sent version when empty
    QString path = u"/api/app-version/check"_s;
};

UpdateEndpointReply send(const Request& r, const UpdateEndpointConfig& c = config())
{
    QUrlQuery query;
    query.addQueryItem(u"app_id"_s, r.appID);
    query.addQueryItem(u"platform"_s, u"macos"_s);
    query.addQueryItem(u"channel"_s, u"prod"_s);
    query.addQueryItem(u"current_version"_s, r.version);
    const QString timestamp = QString::number(r.timestamp);
    const QByteArray signature
        = VersionCheckSigning::signature(c.signatureSecret,
                                         {u"GET"_s, u"/api/app-version/check"_s, r.appID, u"macos"_s, u"prod"_s,
                                          r.signedVersion.isEmpty() ? r.version : r.signedVersion, timestamp});
    return answerUpdateCheck(c, r.path, query, timestamp.toLatin1(), signature);
}

} // namespace

TEST(UpdateEndpointTest, AnswersFromItsConfigurationOnlyToSignedFreshRequests)
{
    struct Case
    {
        const char* name;
        Request request;
        int status;
        QByteArray body;
    };
    const auto answer = [](bool force, bool available) {
        return QByteArray(R"({"update_url":"https://apps.apple.com/app/id6443543821","force_update":)")
            + (force ? "true" : "false") + R"(,"update_available":)" + (available ? "true" : "false") + "}";
    };
    // Plain older and latest versions go through the whole deployment in the end-to-end test.
    const Case cases[] = {
        // Compared by number: 2.10 is newer than 2.3; a version that is no number is never older.
        {"newer than latest", {.version = u"2.10.0"_s}, 200, answer(false, false)},
        {"not a number", {.version = u"beta"_s}, 200, answer(false, false)},
        {"must update, sent with a blank", {.version = u"1.0.1 "_s}, 200, answer(true, true)},
        {"timestamp at the edge of the window", {.timestamp = kNow - 300}, 200, answer(false, true)},
        {"timestamp just past the window", {.timestamp = kNow - 301}, 401, "stale timestamp"},
        {"signature over another version",
         {.version = u"1.0.0"_s, .signedVersion = u"2.3.0"_s},
         401,
         "invalid signature"},
        {"signed for another path", {.path = u"/v2/api/app-version/check"_s}, 401, "invalid signature"},
        {"unknown app", {.appID = u"999"_s}, 404, "unknown app"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const UpdateEndpointReply reply = send(c.request);
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(reply.body, c.body);
    }
}

TEST(UpdateEndpointTest, RejectsMalformedHeadersAndMissingItems)
{
    QUrlQuery full;
    for (const char* key : {"app_id", "platform", "channel", "current_version"})
        full.addQueryItem(QLatin1String(key), u"x"_s);
    const QByteArray goodSignature = VersionCheckSigning::signature(
        u"endpoint-secret"_s, {u"GET"_s, u"/api/app-version/check"_s, u"x"_s, u"x"_s, u"x"_s, u"x"_s, u"1750000000"_s});
    struct Case
    {
        const char* name;
        QUrlQuery query;
        QByteArray timestamp;
        QByteArray signature;
        int status;
    };
    QUrlQuery missing = full;
    missing.removeAllQueryItems(u"channel"_s);
    const Case cases[] = {
        {"uppercase hex is the same signature", full, "1750000000", goodSignature.toUpper(), 404},
        {"missing query item", missing, "1750000000", goodSignature, 400},
        {"signed timestamp", full, "-1750000000", goodSignature, 401},
        {"huge timestamp", full, "99999999999999999999999", goodSignature, 401},
        {"short signature", full, "1750000000", goodSignature.left(63), 401},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(answerUpdateCheck(config(), u"/api/app-version/check"_s, c.query, c.timestamp, c.signature).status,
                  c.status);
    }
}
