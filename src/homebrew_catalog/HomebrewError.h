#pragma once

#include <QString>
#include <utility>
#include <variant>

#include "homebrew_catalog/HomebrewAPIError.h"
#include "homebrew_catalog/HomebrewCatalogProcessingError.h"

namespace quillbay {

// Every failure the catalog can meet, as a value: services return it, stores turn it into
// one fixed message and a log line. Errors of lower layers (file system, JSON decoder,
// network) are carried with their own text, not re-worded.
class HomebrewError
{
public:
    struct Decoding
    {
        QString message;
    };
    struct File
    {
        QString message;
    };
    struct Transport
    {
        int code = 0;
        QString message;
    };
    struct Cancellation
    {
    };

    HomebrewError(HomebrewAPIError error)
        : m_value(error)
    {
    }
    HomebrewError(HomebrewCatalogProcessingError error)
        : m_value(error)
    {
    }
    HomebrewError(Decoding error)
        : m_value(std::move(error))
    {
    }
    HomebrewError(File error)
        : m_value(std::move(error))
    {
    }
    HomebrewError(Transport error)
        : m_value(std::move(error))
    {
    }
    HomebrewError(Cancellation error)
        : m_value(error)
    {
    }

    static HomebrewError decoding(const QString& message) { return Decoding {message}; }
    static HomebrewError file(const QString& message) { return File {message}; }
    static HomebrewError cancellation() { return Cancellation {}; }

    bool isCancellation() const { return std::holds_alternative<Cancellation>(m_value); }
    const HomebrewAPIError* apiError() const { return std::get_if<HomebrewAPIError>(&m_value); }
    const HomebrewCatalogProcessingError* processingError() const
    {
        return std::get_if<HomebrewCatalogProcessingError>(&m_value);
    }
    bool isDecodingError() const { return std::holds_alternative<Decoding>(m_value); }
    bool isFileError() const { return std::holds_alternative<File>(m_value); }
    bool isTransportError() const { return std::holds_alternative<Transport>(m_value); }

    // The text a person may read.
    QString localizedDescription() const;
    // The text for the log: the case and its payload.
    QString debugDescription() const;

private:
    std::variant<HomebrewAPIError, HomebrewCatalogProcessingError, Decoding, File, Transport, Cancellation> m_value;
};

// A value or the error that stopped it.
template <typename T> class HomebrewResult
{
public:
    HomebrewResult(T value)
        : m_value(std::move(value))
    {
    }
    HomebrewResult(HomebrewError error)
        : m_value(std::move(error))
    {
    }
    HomebrewResult(HomebrewAPIError error)
        : m_value(HomebrewError(error))
    {
    }
    HomebrewResult(HomebrewCatalogProcessingError error)
        : m_value(HomebrewError(error))
    {
    }

    bool ok() const { return std::holds_alternative<T>(m_value); }
    explicit operator bool() const { return ok(); }
    const T& value() const& { return std::get<T>(m_value); }
    T&& value() && { return std::get<T>(std::move(m_value)); }
    const HomebrewError& error() const { return std::get<HomebrewError>(m_value); }

private:
    std::variant<T, HomebrewError> m_value;
};

// For operations that give nothing but may fail.
struct HomebrewNothing
{
};
using HomebrewStatus = HomebrewResult<HomebrewNothing>;
inline HomebrewStatus homebrewSuccess()
{
    return HomebrewNothing {};
}

} // namespace quillbay
