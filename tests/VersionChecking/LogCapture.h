#pragma once

#include <QString>
#include <QStringList>
#include <QtMessageHandler>

namespace quillbay::test {

// Records every log line of the categories whose names end in suffix while it lives.
// One at a time: it replaces the process's message handler and puts it back.
class LogCapture
{
public:
    explicit LogCapture(QString categorySuffix);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList messages() const;
    QStringList criticalMessages() const;

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QString m_suffix;
    QtMessageHandler m_previous;
    QStringList m_messages;
    QStringList m_critical;
};

} // namespace quillbay::test
