#pragma once

#include <QString>
#include <QStringList>
#include <QtMessageHandler>

namespace quillbay::test {

// Collects the log lines written while it lives, instead of printing them, so a test can
// check what was logged. It takes over the process's message handler and puts the previous
// one back when it goes, so only one lives at a time. Lines may come from worker threads.
class LogCapture
{
public:
    // Every category, every level (debug output included).
    LogCapture();
    // Only the categories whose name ends in categorySuffix; a full name picks one category.
    explicit LogCapture(QString categorySuffix);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList messages() const;
    QStringList criticalMessages() const;
    // Whether any captured line holds the text.
    bool contains(const QString& text) const;

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QString m_suffix;
    QtMessageHandler m_previous = nullptr;
    QStringList m_messages;
    QStringList m_critical;
};

} // namespace quillbay::test
