#pragma once

#include <QString>

namespace quillbay {

// How a response of the catalog service can be unusable. The descriptions are what the
// store logs and what the detail page shows.
struct HomebrewAPIError
{
    enum class Case { httpStatus, invalidURL, invalidResponse, missingCachedResponse };

    Case kind = Case::invalidResponse;
    qint64 statusCode = 0;

    static HomebrewAPIError httpStatus(qint64 code) { return {Case::httpStatus, code}; }
    static HomebrewAPIError invalidURL() { return {Case::invalidURL, 0}; }
    static HomebrewAPIError invalidResponse() { return {Case::invalidResponse, 0}; }
    static HomebrewAPIError missingCachedResponse() { return {Case::missingCachedResponse, 0}; }

    friend bool operator==(const HomebrewAPIError&, const HomebrewAPIError&) = default;

    QString localizedDescription() const
    {
        switch (kind) {
        case Case::httpStatus:
            return QStringLiteral("Homebrew returned HTTP status %1.").arg(statusCode);
        case Case::invalidURL:
            return QStringLiteral("The Homebrew API URL is invalid.");
        case Case::invalidResponse:
            return QStringLiteral("Homebrew returned an invalid response.");
        case Case::missingCachedResponse:
            return QStringLiteral("Homebrew reported no changes, but no cached data is available.");
        }
        return {};
    }
};

} // namespace quillbay
