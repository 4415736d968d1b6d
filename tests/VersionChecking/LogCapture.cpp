#include "LogCapture.h"

#include <QLoggingCategory>

namespace quillbay::test {

namespace {
LogCapture* current = nullptr;
}

LogCapture::LogCapture(QString categorySuffix)
    : m_suffix(std::move(categorySuffix))
{
    current = this;
    m_previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    current = nullptr;
}

QStringList LogCapture::messages() const
{
    return m_messages;
}

QStringList LogCapture::criticalMessages() const
{
    return m_critical;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (!current || !context.category || !QString::fromLatin1(context.category).endsWith(current->m_suffix))
        return;
    current->m_messages << message;
    if (type == QtCriticalMsg)
        current->m_critical << message;
}

} // namespace quillbay::test
