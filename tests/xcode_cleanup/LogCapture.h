#pragma once

#include <QStringList>
#include <QtGlobal>

namespace quillbay::test {

// Collects every message logged while it lives (debug output included), instead of
// printing them, so a test can check that a skipped item left its line.
class LogCapture
{
public:
    LogCapture() { m_previous = qInstallMessageHandler(&LogCapture::handle); }
    ~LogCapture() { qInstallMessageHandler(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    static QStringList& lines()
    {
        static QStringList collected;
        return collected;
    }
    bool contains(const QString& text) const
    {
        for (const QString& line : lines()) {
            if (line.contains(text))
                return true;
        }
        return false;
    }

private:
    static void handle(QtMsgType, const QMessageLogContext&, const QString& message) { lines().append(message); }
    QtMessageHandler m_previous = nullptr;
};

} // namespace quillbay::test
