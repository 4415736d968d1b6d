#include "core/QuillbayApp.h"

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "platform/Pickers.h"
#include "platform/UserPaths.h"

namespace quillbay {

namespace {

class CancellingPickers final : public Pickers
{
public:
    void chooseFolder(const FolderRequest&, Answer answer) override { answer(std::nullopt); }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override { answer(std::nullopt); }
};

} // namespace

QuillbayApp::QuillbayApp(std::unique_ptr<Defaults> defaults, std::unique_ptr<Pickers> pickers, QObject* parent)
    : QObject(parent)
    , m_defaults(std::move(defaults))
    , m_pickers(pickers ? std::move(pickers) : std::make_unique<CancellingPickers>())
{
    // The order matters: later stores take references to earlier ones.
    m_savedSpaceStore = std::make_unique<SavedSpaceStore>(*m_defaults, QLatin1String(SavedSpaceStore::defaultKey));
    m_viewModel = std::make_unique<AppViewModel>(*m_defaults, *m_savedSpaceStore);
    // Successes reach the engagement prompts once that store exists; until then the
    // callback has no one to tell.
    m_homebrewCacheCleanupStore = std::make_unique<HomebrewCacheCleanupStore>(HomebrewCacheCleanupServices {
        *m_defaults, *m_savedSpaceStore, *m_pickers, UserPaths::system(), [](const QDateTime&) {}});
}

QuillbayApp::~QuillbayApp()
{
    shutdown();
    m_homebrewCacheCleanupStore.reset();
    m_viewModel.reset();
    m_savedSpaceStore.reset();
}

void QuillbayApp::windowDidAppear()
{
    if (m_didCheckVersion)
        return;
    m_didCheckVersion = true;
}

void QuillbayApp::shutdown()
{
    if (m_isShutDown)
        return;
    m_isShutDown = true;
    m_homebrewCacheCleanupStore->drain();
}

} // namespace quillbay
