#include "foundation/Log.h"

#include "foundation/BuildConfig.h"

namespace quillbay {

Q_LOGGING_CATEGORY(logApp, QUILLBAY_BUNDLE_IDENTIFIER ".App", QtWarningMsg)
Q_LOGGING_CATEGORY(logVersionChecking, QUILLBAY_BUNDLE_IDENTIFIER ".VersionChecking", QtWarningMsg)
Q_LOGGING_CATEGORY(logUpdateURLOpener, QUILLBAY_BUNDLE_IDENTIFIER ".UpdateURLOpener", QtWarningMsg)

QString privateText(const QString& text)
{
#ifdef QUILLBAY_REDACT_PRIVATE
    Q_UNUSED(text);
    return QStringLiteral("<private>");
#else
    return text;
#endif
}

} // namespace quillbay
