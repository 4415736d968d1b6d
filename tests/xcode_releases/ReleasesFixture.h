#pragma once

#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerResponse>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "xcode_releases/XcodeReleaseService.h"

namespace quillbay::test {

// A real HTTP server on loopback that answers "/data.json" with whatever status and body
// the test sets, and counts the requests it saw.
class FeedServer
{
public:
    FeedServer()
    {
        m_server.route(QStringLiteral("/data.json"), [this](const QHttpServerRequest&) {
            ++m_requests;
            return QHttpServerResponse(QByteArrayLiteral("application/json"), m_body,
                                       static_cast<QHttpServerResponse::StatusCode>(m_status));
        });
        m_url = QUrl(QStringLiteral("http://127.0.0.1:%1/data.json").arg(m_server.listen(QHostAddress::LocalHost)));
    }
    void answer(int status, const QByteArray& body) { m_status = status, m_body = body; }
    QUrl feedURL() const { return m_url; }
    int requestCount() const { return m_requests; }

private:
    QHttpServer m_server;
    QUrl m_url;
    int m_status = 200;
    QByteArray m_body;
    int m_requests = 0;
};

// Two releases, a final and a beta, with keys the records don't know, so that byte-for-byte
// caching is visible; and three releases, the network's newer list.
inline QByteArray smallFeed()
{
    return QByteArrayLiteral(R"([ {"name": "Xcode", "requires": "14.5", "_order": 1,
  "date": {"day": 5, "month": 3, "year": 2025},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 2, "year": 2025}, "checksums": {"sha1": "ab"},
  "version": {"build": "16E5104o", "number": "16.3", "release": {"beta": 1}}} ]
)");
}

inline QByteArray otherFeed()
{
    return QByteArrayLiteral(R"([{"name": "Xcode", "requires": "15.3", "date": {"day": 9, "month": 6, "year": 2025},
  "version": {"build": "17A5241e", "number": "26.0", "release": {"beta": 1}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 5, "month": 3, "year": 2025},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 2, "year": 2025},
  "version": {"build": "16E5104o", "number": "16.3", "release": {"rc": 1}}}])");
}

// A view model whose feed is a loopback server and whose cache is a temporary file. The
// start-up tasks are queued, so the swap happens before they run. A non-empty Info.plist
// installs an Xcode bundle the workspace reports.
struct Store
{
    TempTree tree;
    FeedServer server;
    QString cachePath = tree.path(QStringLiteral("Caches/xcodereleases.json"));
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    SerialExecutor<CacheManager> cache {std::make_unique<CacheManager>(cachePath)};
    std::unique_ptr<AppViewModel> model;
    RecordingWorkspace* workspace = nullptr;

    explicit Store(std::optional<QByteArray> cached,
                   int status,
                   const QByteArray& body,
                   const QByteArray& xcodeInfoPlist = {})
    {
        tree.mkdir(QStringLiteral("Caches"));
        std::optional<QString> xcodeBundle;
        if (!xcodeInfoPlist.isEmpty()) {
            tree.writeFile(QStringLiteral("Xcode.app/Contents/Info.plist"), xcodeInfoPlist);
            xcodeBundle = tree.path(QStringLiteral("Xcode.app"));
        }
        if (cached)
            tree.writeFile(QStringLiteral("Caches/xcodereleases.json"), *cached);
        server.answer(status, body);
        model = std::make_unique<AppViewModel>(defaults, saved);
        model->replaceXcodeReleaseService(XcodeReleaseService::createWithNetwork(server.feedURL(), cache));
        auto recorder = std::make_unique<RecordingWorkspace>(xcodeBundle);
        workspace = recorder.get();
        model->replaceWorkspace(std::move(recorder));
    }
};

} // namespace quillbay::test
