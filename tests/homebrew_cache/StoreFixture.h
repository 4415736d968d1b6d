#pragma once

#include <QDateTime>
#include <memory>
#include <vector>

#include "CacheFixture.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TestEnvironment.h"

namespace quillbay::test {

// A store over a real cache at the platform's place below a temporary home, with real
// INI defaults, the real saved-space total and a scripted folder panel.
struct StoreFixture
{
    CacheFixture cache {QStringLiteral("home/.cache/Homebrew")};
    std::unique_ptr<SettingsDefaults> defaults
        = std::make_unique<SettingsDefaults>(cache.tree().path(QStringLiteral("defaults.ini")));
    SavedSpaceStore savedSpace {*defaults, QStringLiteral("TotalBytesDeleted")};
    ScriptedPickers pickers;
    std::vector<QDateTime> successes;
    std::unique_ptr<HomebrewCacheCleanupStore> store = makeStore();

    std::unique_ptr<HomebrewCacheCleanupStore> makeStore()
    {
        return std::make_unique<HomebrewCacheCleanupStore>(HomebrewCacheCleanupServices {
            *defaults, savedSpace, pickers, UserPaths::forHome(cache.tree().path(QStringLiteral("home"))),
            [this](const QDateTime& when) { successes.push_back(when); }});
    }

    // Formula packages with a bottle each (the first also a manifest), a cask, some
    // unclaimed downloads and an api folder.
    void populate(int packages = 3)
    {
        for (int i = 0; i < packages; ++i) {
            const QString bottle = QStringLiteral("pkg%1--1.%1.tar.gz").arg(i);
            cache.file(QStringLiteral("downloads/h%1--").arg(i) + bottle, 8192 * (i + 1));
            cache.link(bottle, QStringLiteral("downloads/h%1--").arg(i) + bottle);
        }
        cache.file(QStringLiteral("downloads/m0--pkg0_bottle_manifest--1.0.json"), 4096);
        cache.link(QStringLiteral("pkg0_bottle_manifest--1.0.bottle_manifest.json"),
                   QStringLiteral("downloads/m0--pkg0_bottle_manifest--1.0.json"));
        cache.file(QStringLiteral("downloads/c1--App.dmg"), 65536);
        cache.link(QStringLiteral("Cask/app--2.0.dmg"), QStringLiteral("../downloads/c1--App.dmg"));
        cache.file(QStringLiteral("downloads/stray--old.zip"), 4096);
        cache.file(QStringLiteral("api/formula.jws.json"), 20480);
    }

    bool authorize()
    {
        pickers.answers.push_back(cache.root());
        store->chooseRoot();
        return waitUntil([this] { return !store->isChoosingRoot() && store->hasScannedThisLaunch(); });
    }
};

} // namespace quillbay::test
