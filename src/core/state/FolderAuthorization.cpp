#include "core/state/FolderAuthorization.h"

#include <QGuiApplication>

#include "foundation/Defaults.h"
#include "foundation/Log.h"
#include "foundation/PathContainment.h"
#include "platform/Alerts.h"
#include "platform/FolderBookmark.h"
#include "platform/Pickers.h"

namespace quillbay {

FolderAuthorization::FolderAuthorization(Defaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
{
}

void FolderAuthorization::setPanels(Pickers* pickers, Alerts* alerts)
{
    m_pickers = pickers;
    m_alerts = alerts;
}

QString FolderAuthorization::developerFolderMessage()
{
    QString name = QGuiApplication::applicationDisplayName();
    if (name.isEmpty())
        name = QStringLiteral("Quillbay");
    return name
        + QStringLiteral(" needs permission to access this folder to scan its contents. The folder should already "
                         "be selected; simply click \"Open\" to proceed.");
}

void FolderAuthorization::authorizedFolder(const QString& folder,
                                           const QByteArray& bookmarkData,
                                           const QString& message,
                                           const QString& key,
                                           bool interactive,
                                           Result done)
{
    if (FolderBookmark::canAccess(folder)) {
        done(folder);
        return;
    }
    if (!bookmarkData.isEmpty()) {
        QString error;
        const auto resolved = FolderBookmark::resolve(bookmarkData, &error);
        if (!resolved) {
            qCCritical(logApp).noquote() << QStringLiteral("Failed to resolve bookmark: %1").arg(error);
        } else {
            if (resolved->isStale) {
                const QByteArray renewed = FolderBookmark::make(resolved->path);
                if (!renewed.isEmpty())
                    m_defaults.setValue(key, renewed);
            }
            if (FolderBookmark::canAccess(resolved->path)) {
                done(resolved->path);
                return;
            }
        }
        if (interactive)
            authorizedFolder(folder, {}, message, key, true, std::move(done));
        else
            done(std::nullopt);
        return;
    }
    if (!interactive) {
        done(std::nullopt);
        return;
    }
    askWithPanel(folder, message, key, std::move(done));
}

void FolderAuthorization::askWithPanel(const QString& folder, const QString& message, const QString& key, Result done)
{
    if (!m_pickers) {
        qCCritical(logApp).noquote() << QStringLiteral("Didn't get folder from Open panel! Modal response: %1").arg(0);
        done(std::nullopt);
        return;
    }
    const Pickers::FolderRequest request {folder, message, QStringLiteral("Open")};
    QPointer<FolderAuthorization> self(this);
    m_pickers->chooseFolder(
        request, [self, folder, message, key, done](std::optional<QString> chosen) {
            if (!self) {
                done(std::nullopt);
                return;
            }
            if (!chosen) {
                qCCritical(logApp).noquote()
                    << QStringLiteral("Didn't get folder from Open panel! Modal response: %1").arg(0);
                done(std::nullopt);
                return;
            }
            if (standardizedPath(*chosen) == standardizedPath(folder) && FolderBookmark::canAccess(*chosen)) {
                const QByteArray bookmark = FolderBookmark::make(*chosen);
                if (!bookmark.isEmpty()) {
                    self->m_defaults.setValue(key, bookmark);
                    done(*chosen);
                    return;
                }
            }
            self->refuseChosenFolder(folder, message, key, done);
        });
}

void FolderAuthorization::refuseChosenFolder(const QString& folder,
                                             const QString& message,
                                             const QString& key,
                                             Result done)
{
    qCCritical(logApp) << "Can't access the selected folder after the Open panel closed.";
    m_defaults.remove(key);
    if (!m_alerts) {
        done(std::nullopt);
        return;
    }
    const Alerts::Request request {
        QStringLiteral("Can't get access to ") + folder + QStringLiteral(" folder"),
        QStringLiteral("Please do not change the default selected folder?"),
        {QStringLiteral("Repeat"), QStringLiteral("Cancel")},
        Alerts::Style::informational,
    };
    QPointer<FolderAuthorization> self(this);
    m_alerts->show(request, [self, folder, message, key, done](int button) {
        if (!self || button != 0) {
            done(std::nullopt);
            return;
        }
        self->authorizedFolder(folder, {}, message, key, true, done);
    });
}

} // namespace quillbay
