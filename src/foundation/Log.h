#pragma once

#include <QLoggingCategory>

namespace quillbay {

// Error-level logging under the bundle identifier. Arguments that may carry the user's
// paths or server texts go through privateText(), which redacts them in release builds.
Q_DECLARE_LOGGING_CATEGORY(logApp)
Q_DECLARE_LOGGING_CATEGORY(logVersionChecking)
Q_DECLARE_LOGGING_CATEGORY(logUpdateURLOpener)

QString privateText(const QString& text);

} // namespace quillbay
