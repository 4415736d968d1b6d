#include "VersionChecking/PlatformUpdateURLOpener.h"

#include <QDesktopServices>

#include "VersionChecking/VersionCheckingLog.h"

namespace quillbay {

PlatformUpdateURLOpener::PlatformUpdateURLOpener(Operations operations)
    : m_operations(std::move(operations))
{
    if (!m_operations.applicationForIdentifier)
        m_operations.applicationForIdentifier = [](const QString&) { return std::optional<QString>(); };
    if (!m_operations.openWithApplication)
        m_operations.openWithApplication = [](const QUrl&, const QString&) {
            return std::optional<QString>(QStringLiteral("No application can be launched by location here."));
        };
    if (!m_operations.openWithDefaultHandler)
        m_operations.openWithDefaultHandler = [](const QUrl& url) { QDesktopServices::openUrl(url); };
}

void PlatformUpdateURLOpener::open(const QUrl& url) const
{
    const QString text = url.toString();
    const bool isStorePage
        = text.contains(QLatin1String(storeWebHost)) || text.contains(QLatin1String(olderStoreWebHost));
    if (!isStorePage) {
        m_operations.openWithDefaultHandler(url);
        return;
    }
    const std::optional<QString> store
        = m_operations.applicationForIdentifier(QLatin1String(storeApplicationIdentifier));
    if (!store) {
        m_operations.openWithDefaultHandler(url);
        return;
    }
    if (const std::optional<QString> error = m_operations.openWithApplication(url, *store)) {
        qCCritical(updateURLOpenerLog).noquote() << QStringLiteral("Failed to open with App Store app: %1").arg(*error);
        m_operations.openWithDefaultHandler(url);
    }
}

} // namespace quillbay
