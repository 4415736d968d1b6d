#pragma once

#include <QObject>
#include <memory>

namespace quillbay {

class AppViewModel;
class Defaults;
class SavedSpaceStore;
class Workspace;

// The composition root: builds every long-lived store once, in a fixed order, and owns
// them for the length of the process. Screens receive references. UI thread only.
//
// Shutdown runs in the reverse order of construction, after every running task was
// asked to stop and every executor drained, because a continuation's context must
// outlive the future that resumes on it.
class QuillbayApp : public QObject
{
    Q_OBJECT

public:
    explicit QuillbayApp(std::unique_ptr<Defaults> defaults, QObject* parent = nullptr);
    ~QuillbayApp() override;

    Defaults& defaults() const { return *m_defaults; }
    SavedSpaceStore& savedSpaceStore() const { return *m_savedSpaceStore; }
    AppViewModel& viewModel() const { return *m_viewModel; }
    Workspace& workspace() const { return *m_workspace; }

    bool didCheckVersion() const { return m_didCheckVersion; }

    // Called when the main window first appears: the once-per-process start-up work.
    void windowDidAppear();

    // Stops every running task and waits for the executors, before anything is deleted.
    void shutdown();

private:
    std::unique_ptr<Defaults> m_defaults;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<SavedSpaceStore> m_savedSpaceStore;
    std::unique_ptr<AppViewModel> m_viewModel;
    bool m_didCheckVersion = false;
    bool m_isShutDown = false;
};

} // namespace quillbay
