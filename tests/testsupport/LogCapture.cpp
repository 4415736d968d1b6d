#include "testsupport/LogCapture.h"

#include <QMutex>
#include <QMutexLocker>

namespace quillbay::test {

namespace {

// Guards `current` and the lists of the capture it points at: services log from their
// own threads while the test reads on the main one.
QMutex mutex;
LogCapture* current = nullptr;

} // namespace

LogCapture::LogCapture()
    : LogCapture(QString())
{
}

LogCapture::LogCapture(QString categorySuffix)
    : m_suffix(std::move(categorySuffix))
{
    QMutexLocker lock(&mutex);
    current = this;
    m_previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    QMutexLocker lock(&mutex);
    qInstallMessageHandler(m_previous);
    current = nullptr;
}

QStringList LogCapture::messages() const
{
    QMutexLocker lock(&mutex);
    return m_messages;
}

QStringList LogCapture::criticalMessages() const
{
    QMutexLocker lock(&mutex);
    return m_critical;
}

bool LogCapture::contains(const QString& text) const
{
    const QStringList lines = messages();
    for (const QString& line : lines) {
        if (line.contains(text))
            return true;
    }
    return false;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    QMutexLocker lock(&mutex);
    if (!current)
        return;
    if (!current->m_suffix.isEmpty()
        && (!context.category || !QLatin1String(context.category).endsWith(current->m_suffix)))
        return;
    current->m_messages << message;
    if (type == QtCriticalMsg)
        current->m_critical << message;
}

} // namespace quillbay::test
