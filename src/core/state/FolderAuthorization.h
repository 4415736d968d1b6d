#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <optional>

namespace quillbay {

class Alerts;
class Defaults;
class Pickers;

// Gets a usable folder: directly when it can be reached, else through the bookmark stored
// under a defaults key, else (only when asked to be interactive) by asking the user to pick
// exactly that folder in an open panel. Never opens a panel by itself. UI thread; the
// answer may come synchronously (no panel needed) or later (after the panel or the alert).
class FolderAuthorization : public QObject
{
    Q_OBJECT

public:
    using Result = std::function<void(std::optional<QString> folder)>;

    FolderAuthorization(Defaults& defaults, QObject* parent = nullptr);

    // Not owned; either may be null, which reads as the user closing the panel or
    // pressing "Cancel".
    void setPanels(Pickers* pickers, Alerts* alerts);
    Pickers* pickers() const { return m_pickers; }
    Alerts* alerts() const { return m_alerts; }

    void authorizedFolder(const QString& folder,
                          const QByteArray& bookmarkData,
                          const QString& message,
                          const QString& key,
                          bool interactive,
                          Result done);

    // The open panel's text for the Developer folder, with the program's display name.
    static QString developerFolderMessage();

private:
    void askWithPanel(const QString& folder, const QString& message, const QString& key, Result done);
    void refuseChosenFolder(const QString& folder, const QString& message, const QString& key, Result done);

    Defaults& m_defaults;
    Pickers* m_pickers = nullptr;
    Alerts* m_alerts = nullptr;
};

} // namespace quillbay
