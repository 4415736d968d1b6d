#include <QDir>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QStringList>

#include <gtest/gtest.h>

#include "UnprivilegedUser.h"
#include "foundation/Defaults.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/FolderBookmark.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

const QString kKey = QLatin1String(HomebrewInstalledPackagesStore::rootBookmarkKey);

// The real processor behind a gate: each call waits for a permit, so a test can change the
// store while a call is provably still running.
class GatedProcessor final : public HomebrewInstalledPackageProcessor
{
public:
    HomebrewInstalledPackageLists process(const QList<HomebrewInstalledPackage>& rawPackages,
                                          const HomebrewPackageSummaries& catalogSummaries,
                                          const QString& searchText,
                                          std::stop_token stopToken) const override
    {
        ++started;
        gate.acquire();
        return HomebrewInstalledPackageProcessor::process(rawPackages, catalogSummaries, searchText, stopToken);
    }
    mutable QSemaphore gate;
    mutable std::atomic<int> started {0};
};

QStringList rows(const QList<HomebrewInstalledPackage>& packages)
{
    QStringList out;
    for (const auto& p : packages)
        out.append(p.displayName() + u' ' + p.installedVersion);
    return out;
}

HomebrewPackageSummaries catalog()
{
    HomebrewPackageSummary firefox;
    firefox.kind = HomebrewCatalogKind::cask;
    firefox.identifier = u"firefox"_s;
    firefox.displayName = u"Mozilla Firefox"_s;
    firefox.version = u"129.0"_s;
    return {{firefox.route(), firefox}};
}

class HomebrewInstalledPackagesStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        UnprivilegedUser::makeReachable(m_tree.root());
        m_root = m_tree.path(u"brew"_s);
        m_tree.writeFile(u"brew/bin/brew"_s, "#!/bin/sh\n");
        for (const QString& folder : {u"Cellar/wget/1.24.5"_s, u"Cellar/wget/1.25.0"_s, u"Cellar/jq/1.7.1"_s,
                                      u"Caskroom/firefox/128.0"_s, u"Caskroom/unlisted-app/1.0"_s})
            m_tree.mkdir(u"brew/"_s + folder);
        m_tree.mkdir(u"home"_s);
        m_defaults = std::make_unique<SettingsDefaults>(m_tree.path(u"defaults.ini"_s));
    }

    std::unique_ptr<HomebrewInstalledPackagesStore>
    makeStore(std::unique_ptr<HomebrewInstalledPackageProcessor> processor
              = std::make_unique<HomebrewInstalledPackageProcessor>())
    {
        return std::make_unique<HomebrewInstalledPackagesStore>(
            *m_defaults, kKey, std::make_unique<HomebrewInstallationBookmarkService>(),
            std::make_unique<HomebrewInstallationScanner>(), std::move(processor), m_pickers, m_workspace,
            UserPaths::forHome(m_tree.path(u"home"_s)));
    }

    // Authorizes the test root through the folder panel and waits for the lists.
    void authorizeThroughPanel(HomebrewInstalledPackagesStore& store)
    {
        m_pickers.answers.push_back(m_root);
        store.chooseRoot();
        ASSERT_TRUE(store.isChoosingRoot());
        ASSERT_TRUE(waitUntil([&] { return idle(store) && store.formulae().size() == 3; }));
    }

    static bool idle(const HomebrewInstalledPackagesStore& store)
    {
        return !store.isScanning() && !store.isLoadingAuthorization() && !store.isChoosingRoot()
            && !store.isFiltering();
    }

    TempTree m_tree;
    QString m_root;
    std::unique_ptr<SettingsDefaults> m_defaults;
    ScriptedPickers m_pickers;
    RecordingWorkspace m_workspace;
};

} // namespace

TEST_F(HomebrewInstalledPackagesStoreTest, FailedAuthorizationKeepsTheRootAStaleOneIsRenewedARemovedOneStaysGone)
{
    auto store = makeStore();
    store->start({});
    authorizeThroughPanel(*store);
    const auto formerFormulae = store->formulae();
    const QByteArray formerBookmark = m_defaults->dataValue(kKey);

    m_tree.mkdir(u"not-brew/Cellar/wget/1.0"_s);
    struct Case
    {
        QString url;
        QString message;
    };
    const Case cases[] = {
        {m_tree.path(u"not-brew"_s), u"Choose a Homebrew root folder that contains bin/brew."_s},
        {m_tree.path(u"missing"_s), u"The Homebrew folder could not be accessed."_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.url.toStdString());
        store->authorize(c.url);
        ASSERT_TRUE(waitUntil([&] { return idle(*store); }));
        EXPECT_EQ(store->errorMessage(), c.message);
        EXPECT_EQ(store->rootURL(), m_root);
        EXPECT_EQ(store->formulae(), formerFormulae);
        EXPECT_EQ(m_defaults->dataValue(kKey), formerBookmark);
    }

    // A cancelled panel changes nothing at all.
    m_pickers.answers.push_back(std::nullopt);
    store->chooseRoot();
    ASSERT_TRUE(waitUntil([&] { return !store->isChoosingRoot(); }));
    EXPECT_EQ(store->rootURL(), m_root);
    EXPECT_EQ(m_pickers.requests.last().directory, m_root);

    // A new launch after a new folder appeared at the same path (reinstalled Homebrew): the
    // bookmark went stale and is renewed.
    store.reset();
    const QByteArray before = m_defaults->dataValue(kKey);
    // The old folder is kept so its inode is not reused.
    ASSERT_TRUE(QDir().rename(m_root, m_root + u".old"_s));
    m_tree.writeFile(u"brew/bin/brew"_s, "#!/bin/sh\n");
    m_tree.mkdir(u"brew/Cellar/wget/2.0"_s);
    ASSERT_TRUE(FolderBookmark::resolve(before)->isStale);

    store = makeStore();
    store->start({});
    // The rows of the new folder show that the renewed bookmark led to it.
    ASSERT_TRUE(waitUntil([&] { return idle(*store) && !store->formulae().isEmpty(); }));
    EXPECT_EQ(store->rootURL(), m_root);
    EXPECT_EQ(rows(store->formulae()), QStringList {u"wget 2.0"_s});
    const QByteArray after = m_defaults->dataValue(kKey);
    EXPECT_NE(after, before);
    ASSERT_TRUE(FolderBookmark::resolve(after).has_value());
    EXPECT_FALSE(FolderBookmark::resolve(after)->isStale);

    // A scan running when the authorization is removed brings nothing back.
    m_tree.mkdir(u"brew/Cellar/wget/2.1"_s);
    store->rescan();
    store->removeAuthorization();
    EXPECT_FALSE(store->isAuthorized());
    EXPECT_TRUE(store->rawPackages().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return idle(*store) && !m_defaults->contains(kKey); }));
    EXPECT_TRUE(store->rawPackages().isEmpty());
    EXPECT_TRUE(store->formulae().isEmpty());
    EXPECT_FALSE(store->hasScannedThisLaunch());
}

TEST_F(HomebrewInstalledPackagesStoreTest, ADamagedBookmarkIsDroppedButAFolderChosenMeanwhileStands)
{
    const QString gone = m_tree.mkdir(u"gone"_s);
    const QByteArray goneBookmark = FolderBookmark::make(gone);
    ASSERT_FALSE(goneBookmark.isEmpty());
    ASSERT_TRUE(QDir(gone).removeRecursively());
    struct Case
    {
        const char* name;
        QVariant stored;
    };
    const Case cases[] = {
        {"folder removed", goneBookmark},
        {"garbage bytes", QByteArray("\x00\x01not a bookmark", 16)},
        {"truncated", goneBookmark.left(goneBookmark.size() / 2)},
        {"a text value", u"/opt/homebrew"_s}, // arrives from the settings file as no data
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_defaults->setValue(kKey, c.stored);
        auto store = makeStore();
        store->start({});
        ASSERT_TRUE(waitUntil([&] { return store->hasLoadedAuthorization(); }));
        EXPECT_FALSE(store->isAuthorized());
        EXPECT_EQ(store->errorMessage(), u"The saved Homebrew folder authorization is no longer valid."_s);
        EXPECT_TRUE(waitUntil([&] { return !m_defaults->contains(kKey); }));
    }

    // A folder chosen while the dead bookmark is being restored stands.
    // The restore, the scan and the save run on different executors, so their results may
    // land in either order; repeat to meet both.
    for (int attempt = 0; attempt < 8; ++attempt) {
        SCOPED_TRACE(attempt);
        m_defaults->setValue(kKey, QByteArray("a bookmark of a folder long gone"));
        auto store = makeStore();
        store->start({});
        authorizeThroughPanel(*store);
        ASSERT_TRUE(waitUntil([&] { return idle(*store) && store->hasLoadedAuthorization(); }));
        EXPECT_EQ(store->rootURL(), m_root);
        EXPECT_FALSE(store->errorMessage().has_value());
        store.reset(); // drains every executor, so a late removal of the key would show now
        ASSERT_TRUE(m_defaults->contains(kKey));
        const auto restored = HomebrewInstallationBookmarkService().restoreRootURL(m_defaults->dataValue(kKey));
        ASSERT_TRUE(std::holds_alternative<HomebrewInstallationBookmarkService::Restored>(restored));
        EXPECT_EQ(std::get<HomebrewInstallationBookmarkService::Restored>(restored).path, m_root);
    }
}

TEST_F(HomebrewInstalledPackagesStoreTest, SearchIsDebouncedAndOnlyTheLastResultLands)
{
    auto owned = std::make_unique<GatedProcessor>();
    GatedProcessor& gated = *owned;
    gated.gate.release(1); // the processing after the first scan
    auto store = makeStore(std::move(owned));
    // Whatever happens below, no call may stay blocked when the store drains its executors.
    const auto openGate = qScopeGuard([&] { gated.gate.release(100); });
    store->start({});
    authorizeThroughPanel(*store);
    QList<QStringList> published;
    QObject::connect(store.get(), &HomebrewInstalledPackagesStore::packagesChanged, store.get(),
                     [&] { published.append(rows(store->formulae()) + rows(store->casks())); });

    // The join is running (held at the gate) when typing supersedes it; the filter state
    // shows at once, and the search's single call queues behind the join on the processor.
    store->updateCatalogSummaries(catalog());
    ASSERT_TRUE(waitUntil([&] { return gated.started == 2; }));
    for (const QString& text : {u"f"_s, u"fire"_s, u"firefox"_s}) {
        store->setSearchText(text);
        EXPECT_TRUE(store->isFiltering());
    }
    QSignalSpy none(store.get(), &HomebrewInstalledPackagesStore::packagesChanged);
    EXPECT_FALSE(none.wait(400)); // the pause passes; the search's call waits its turn
    EXPECT_EQ(gated.started, 2);
    EXPECT_EQ(store->formulae().size(), 3);
    gated.gate.release(2);
    ASSERT_TRUE(waitUntil([&] { return !store->isFiltering(); }));
    QSignalSpy more(store.get(), &HomebrewInstalledPackagesStore::packagesChanged);
    EXPECT_FALSE(more.wait(200));
    EXPECT_EQ(published, (QList<QStringList> {{u"Mozilla Firefox 128.0"_s}}));
    EXPECT_EQ(gated.started, 3);

    // A rescan under an active search is filtered too.
    gated.gate.release(100);
    m_tree.mkdir(u"brew/Caskroom/firefox/130.0"_s);
    m_tree.mkdir(u"brew/Cellar/curl/8.0"_s);
    store->rescan();
    ASSERT_TRUE(waitUntil([&] { return idle(*store) && store->casks().size() == 2; }));
    EXPECT_EQ(rows(store->casks()), (QStringList {u"Mozilla Firefox 130.0"_s, u"Mozilla Firefox 128.0"_s}));
    EXPECT_TRUE(store->formulae().isEmpty());
}

TEST_F(HomebrewInstalledPackagesStoreTest, PermissionTroubleBelowAndAtTheRoot)
{
    auto store = makeStore();
    store->start(catalog());
    authorizeThroughPanel(*store);
    m_defaults->sync();

    // One kind unreadable: the other kind's rows stay, with the partial-scan message.
    m_tree.mkdir(u"brew/Caskroom/iterm2/3.5"_s);
    m_tree.chmod(u"brew/Cellar/jq"_s, 0);
    {
        const UnprivilegedUser user;
        if (!user.permissionsApply())
            GTEST_SKIP() << "cannot drop root privileges to make a folder unlistable: " << user.failure().toStdString();
        store->rescan();
        ASSERT_TRUE(waitUntil([&] { return idle(*store) && store->casks().size() == 3; }));
    }
    EXPECT_EQ(store->errorMessage(), u"Some installed Homebrew packages could not be read."_s);
    EXPECT_TRUE(store->formulae().isEmpty());
    EXPECT_FALSE(store->hasPackages(HomebrewCatalogKind::formula));
    EXPECT_TRUE(store->hasPackages(HomebrewCatalogKind::cask));

    // The root itself closed: scan and reveal are refused with the access text.
    m_tree.chmod(u"brew"_s, 0);
    const HomebrewInstalledPackage firefox = store->casks()[0];
    {
        const UnprivilegedUser user;
        store->rescan();
        ASSERT_TRUE(waitUntil([&] { return idle(*store); }));
        EXPECT_EQ(store->errorMessage(), u"The Homebrew folder could not be accessed."_s);
        store->revealInstallation(firefox);
        EXPECT_EQ(store->operationErrorMessage(), u"The Homebrew folder could not be accessed."_s);
    }
    EXPECT_EQ(store->casks().size(), 3);
    EXPECT_TRUE(m_workspace.revealed.isEmpty());
}
