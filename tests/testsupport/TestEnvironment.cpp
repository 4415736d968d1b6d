#include "testsupport/TestEnvironment.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <unistd.h>

namespace quillbay::test {

QString sharedDataDir()
{
    QString configured = qEnvironmentVariable("QUILLBAY_SHARED_DIR");
    if (configured.isEmpty())
        configured = QStringLiteral(QUILLBAY_SHARED_DIR_DEFAULT);
    if (!configured.isEmpty() && QFileInfo(configured + QStringLiteral("/realdata")).isDir())
        return QDir(configured).absolutePath() + QStringLiteral("/realdata");
    return {};
}

QString sourceDir()
{
    const QString configured = qEnvironmentVariable("QUILLBAY_SOURCE_DIR");
    return configured.isEmpty() ? QStringLiteral(QUILLBAY_SOURCE_DIR_DEFAULT) : configured;
}

bool waitUntil(const std::function<bool()>& predicate, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!predicate()) {
        if (deadline.hasExpired())
            return predicate();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(1);
    }
    return true;
}

bool runningAsRoot()
{
    return ::geteuid() == 0;
}

} // namespace quillbay::test
