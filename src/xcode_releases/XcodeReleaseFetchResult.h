#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "xcode_releases/XcodeReleaseServiceError.h"

namespace quillbay {

// The outcome of one fetch: validated feed bytes, or why there are none, either the
// transport's failure or the service's refusal.
struct XcodeReleaseFetchResult
{
    QByteArray data;
    std::optional<QString> transportError;
    std::optional<XcodeReleaseServiceError> serviceError;

    bool succeeded() const { return !transportError && !serviceError; }

    QString failureDescription() const
    {
        if (serviceError)
            return serviceError->description();
        return transportError.value_or(QString());
    }
};

} // namespace quillbay
