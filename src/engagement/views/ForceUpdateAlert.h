#pragma once

#include <QMessageBox>
#include <functional>

namespace quillbay {

class VersionManager;

// The alert of a required update. It has no way out but its two buttons, and both end
// the process: "Update Now" opens the update page first, "Quit" just quits. Closing it
// counts as "Quit".
class ForceUpdateAlert : public QMessageBox
{
    Q_OBJECT

public:
    ForceUpdateAlert(VersionManager& versionManager,
                     const QString& displayName,
                     std::function<void()> quit,
                     QWidget* parent = nullptr);

    static QString message(const QString& displayName, const QString& currentVersion);

    QAbstractButton* updateNowButton() const { return m_updateNow; }
    QAbstractButton* quitButton() const { return m_quit; }

private:
    VersionManager& m_versionManager;
    std::function<void()> m_quitApplication;
    QAbstractButton* m_updateNow;
    QAbstractButton* m_quit;
    bool m_isEnding = false;
};

} // namespace quillbay
