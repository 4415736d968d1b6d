#include "engagement/views/ForceUpdateAlert.h"

#include <QPushButton>

#include "VersionChecking/VersionManager.h"

namespace quillbay {

ForceUpdateAlert::ForceUpdateAlert(VersionManager& versionManager,
                                   const QString& displayName,
                                   std::function<void()> quit,
                                   QWidget* parent)
    : QMessageBox(parent)
    , m_versionManager(versionManager)
    , m_quitApplication(std::move(quit))
{
    setObjectName(QStringLiteral("forceUpdateAlert"));
    setWindowTitle(QStringLiteral("Update"));
    setIcon(QMessageBox::Information);
    setText(QStringLiteral("<b>Update</b>"));
    setInformativeText(message(displayName, m_versionManager.currentVersion()));
    setWindowModality(Qt::ApplicationModal);
    auto* updateNow = addButton(QStringLiteral("Update Now"), QMessageBox::AcceptRole);
    updateNow->setObjectName(QStringLiteral("updateNowPushButton"));
    auto* quitButton = addButton(QStringLiteral("Quit"), QMessageBox::RejectRole);
    quitButton->setObjectName(QStringLiteral("quitPushButton"));
    m_updateNow = updateNow;
    m_quit = quitButton;
    setDefaultButton(updateNow);
    setEscapeButton(quitButton);
    connect(this, &QMessageBox::buttonClicked, this, [this](QAbstractButton* button) {
        if (m_isEnding)
            return;
        m_isEnding = true;
        // The page may fail to open (an address that does not parse); the run ends anyway.
        if (button == m_updateNow)
            m_versionManager.openUpdateURL();
        if (m_quitApplication)
            m_quitApplication();
    });
}

QString ForceUpdateAlert::message(const QString& displayName, const QString& currentVersion)
{
    return QStringLiteral("This update is required to continue using ") + displayName
        + QStringLiteral(".\n\nCurrent Version: ") + currentVersion;
}

} // namespace quillbay
