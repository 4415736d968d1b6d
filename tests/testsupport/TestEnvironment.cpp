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
    const QString configured = qEnvironmentVariable("QUILLBAY_SHARED_DIR");
    if (!configured.isEmpty() && QFileInfo(configured + QStringLiteral("/realdata")).isDir())
        return QDir(configured).absolutePath() + QStringLiteral("/realdata");
    return {};
}

QString sourceDir()
{
    return qEnvironmentVariable("QUILLBAY_SOURCE_DIR");
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
