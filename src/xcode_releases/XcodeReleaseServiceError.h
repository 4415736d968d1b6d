#pragma once

#include <QString>

namespace quillbay {

// Why a fetched feed was refused. It has no user-facing text: the screen shows one fixed
// message for every failure; description() is for the log.
class XcodeReleaseServiceError
{
public:
    enum class Case {
        httpStatus, // an HTTP status outside 200...299, body unread
        invalidResponse, // the answer was not an HTTP response
        invalidCatalog, // empty body, no decodable feed, or an empty array
    };

    static XcodeReleaseServiceError httpStatus(int statusCode) { return {Case::httpStatus, statusCode}; }
    static XcodeReleaseServiceError invalidResponse() { return {Case::invalidResponse, 0}; }
    static XcodeReleaseServiceError invalidCatalog() { return {Case::invalidCatalog, 0}; }

    Case kind() const { return m_case; }
    // The status of an httpStatus error; 0 for the other cases.
    int statusCode() const { return m_statusCode; }

    QString description() const
    {
        switch (m_case) {
        case Case::httpStatus:
            return QStringLiteral("httpStatus(%1)").arg(m_statusCode);
        case Case::invalidResponse:
            return QStringLiteral("invalidResponse");
        case Case::invalidCatalog:
            break;
        }
        return QStringLiteral("invalidCatalog");
    }

    friend bool operator==(const XcodeReleaseServiceError&, const XcodeReleaseServiceError&) = default;

private:
    XcodeReleaseServiceError(Case kind, int statusCode)
        : m_case(kind)
        , m_statusCode(statusCode)
    {
    }

    Case m_case;
    int m_statusCode;
};

} // namespace quillbay
