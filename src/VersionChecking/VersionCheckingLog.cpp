#include "VersionChecking/VersionCheckingLog.h"

namespace quillbay {

Q_LOGGING_CATEGORY(versionCheckingLog, VERSION_CHECKING_LOG_SUBSYSTEM ".VersionChecking", QtWarningMsg)
Q_LOGGING_CATEGORY(updateURLOpenerLog, VERSION_CHECKING_LOG_SUBSYSTEM ".UpdateURLOpener", QtWarningMsg)

} // namespace quillbay
