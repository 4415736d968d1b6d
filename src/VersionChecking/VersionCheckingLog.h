#pragma once

#include <QLoggingCategory>

namespace quillbay {

// The module's own categories, under the bundle identifier given at build time: the
// manager and the configuration log to "VersionChecking", the opener to "UpdateURLOpener".
Q_DECLARE_LOGGING_CATEGORY(versionCheckingLog)
Q_DECLARE_LOGGING_CATEGORY(updateURLOpenerLog)

} // namespace quillbay
