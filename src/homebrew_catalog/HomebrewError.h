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
        : m_kind(Kind::api)
        , m_api(error)
    {
    }
    HomebrewError(HomebrewCatalogProcessingError error)
        : m_kind(Kind::processing)
        , m_processing(error)
    {
    }
    HomebrewError(Decoding error)
        : m_kind(Kind::decoding)
        , m_message(std::move(error.message))
    {
    }
    HomebrewError(File error)
        : m_kind(Kind::file)
        , m_message(std::move(error.message))
    {
    }
    HomebrewError(Transport error)
        : m_kind(Kind::transport)
        , m_code(error.code)
        , m_message(std::move(error.message))
    {
    }
    HomebrewError(Cancellation)
        : m_kind(Kind::cancellation)
    {
    }

    static HomebrewError decoding(const QString& message) { return Decoding {message}; }
    static HomebrewError file(const QString& message) { return File {message}; }
    static HomebrewError cancellation() { return Cancellation {}; }

    bool isCancellation() const { return m_kind == Kind::cancellation; }
    const HomebrewAPIError* apiError() const { return m_kind == Kind::api ? &m_api : nullptr; }
    const HomebrewCatalogProcessingError* processingError() const
    {
        return m_kind == Kind::processing ? &m_processing : nullptr;
    }
    bool isDecodingError() const { return m_kind == Kind::decoding; }
    bool isFileError() const { return m_kind == Kind::file; }
    bool isTransportError() const { return m_kind == Kind::transport; }

    // The text a person may read.
    QString localizedDescription() const;
    // The text for the log: the case and its payload.
    QString debugDescription() const;

private:
    // A tagged record rather than a variant: one layout, cheap to copy, and clear to the
    // compiler's flow analysis.
    enum class Kind { api, processing, decoding, file, transport, cancellation };
    Kind m_kind;
    HomebrewAPIError m_api;
    HomebrewCatalogProcessingError m_processing;
    int m_code = 0;
    QString m_message;
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
