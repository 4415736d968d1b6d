#include "core/QuillbayApp.h"

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "platform/Workspace.h"

namespace quillbay {

QuillbayApp::QuillbayApp(std::unique_ptr<Defaults> defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(std::move(defaults))
    , m_workspace(Workspace::createSystem())
{
    // The order matters: later stores take references to earlier ones.
    m_savedSpaceStore = std::make_unique<SavedSpaceStore>(*m_defaults, QLatin1String(SavedSpaceStore::defaultKey));
    m_viewModel = std::make_unique<AppViewModel>(*m_defaults, *m_savedSpaceStore);
    m_viewModel->setAssetsWorkspace(m_workspace.get());
}

QuillbayApp::~QuillbayApp()
{
    shutdown();
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
}

} // namespace quillbay
