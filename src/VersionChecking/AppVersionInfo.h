#pragma once

#include <QByteArray>
#include <QString>
#include <variant>

namespace quillbay {

struct AppVersionDecodingError;

// The update service's answer. All three keys are required; unknown keys are ignored.
struct AppVersionInfo
{
    QString updateURL;
    bool forceUpdate = false;
    bool updateAvailable = false;

    // The JSON object {"update_url", "force_update", "update_available"}, or why not.
    static std::variant<AppVersionInfo, AppVersionDecodingError> decode(const QByteArray& json);
    // The same keys in that order, as the service writes them.
    QByteArray encode() const;

    friend bool operator==(const AppVersionInfo&, const AppVersionInfo&) = default;
};

struct AppVersionDecodingError
{
    QString description;
};

} // namespace quillbay
