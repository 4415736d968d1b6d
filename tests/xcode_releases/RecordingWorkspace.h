#pragma once

#include <QList>
#include <QUrl>

#include "platform/Workspace.h"

namespace quillbay::test {

// Stands in for the desktop, which cannot open a browser or hold an Xcode here: records
// the addresses it is asked to open and finds the one application it was given.
class RecordingWorkspace final : public Workspace
{
public:
    explicit RecordingWorkspace(std::optional<QString> xcodePath = std::nullopt)
        : m_xcodePath(std::move(xcodePath))
    {
    }

    bool openUrl(const QUrl& url) override
    {
        opened << url;
        return true;
    }
    bool revealFiles(const QStringList&) override { return false; }
    std::optional<QString> applicationPath(const QString& identifier) override
    {
        asked << identifier;
        return m_xcodePath;
    }
    QStringList runningApplicationIdentifiers() override { return {}; }
    bool openTerminal(const QString&) override { return false; }

    QList<QUrl> opened;
    QStringList asked;

private:
    std::optional<QString> m_xcodePath;
};

} // namespace quillbay::test
