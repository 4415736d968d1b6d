#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <string_view>

#include <simdjson.h>

#include "homebrew_catalog/HomebrewError.h"

namespace quillbay::json {

// Parses with this thread's reusable parser. The element stays valid until the next
// parse on the same thread, so callers finish with it before parsing again.
HomebrewResult<simdjson::dom::element> parse(const QByteArray& bytes);

// Catalog text is mostly ASCII, for which the Latin-1 conversion is the same and several
// times cheaper than the UTF-8 decoder on short strings.
inline QString toQString(std::string_view text)
{
    // No early exit: the compiler turns the test into a few vector operations.
    unsigned char high = 0;
    for (const char c : text)
        high |= static_cast<unsigned char>(c);
    if (high >= 0x80)
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

// Strict, typed reading of one JSON object: a missing required key or a value of the wrong
// type is a decoding error naming the key's path. Optional keys that are missing or null
// are absent. The first error sticks; later reads do nothing.
class ObjectReader
{
public:
    explicit ObjectReader(simdjson::dom::element element, QString path = {});
    ObjectReader(simdjson::dom::object object, QString path);

    bool ok() const { return !m_error.has_value(); }
    HomebrewError error() const { return *m_error; }
    // The decoder's own words, for wrapping into a message with more context.
    const QString& message() const { return m_message; }
    QString where(const QString& key) const { return m_path.isEmpty() ? key : m_path + u'.' + key; }
    const simdjson::dom::object& object() const { return m_object; }

    void requiredString(std::string_view key, QString& out);
    void requiredInteger(std::string_view key, qint64& out);
    void requiredBool(std::string_view key, bool& out);
    void requiredStringList(std::string_view key, QStringList& out);
    void requiredObject(std::string_view key, simdjson::dom::object& out);
    void requiredArray(std::string_view key, simdjson::dom::array& out);

    // Type checks only, for validation that keeps nothing: no text is converted.
    void expectString(std::string_view key);
    void expectStringList(std::string_view key);
    void expectBool(std::string_view key);

    void optionalString(std::string_view key, std::optional<QString>& out);
    void optionalInteger(std::string_view key, std::optional<qint64>& out);
    void optionalBool(std::string_view key, std::optional<bool>& out);
    void optionalStringList(std::string_view key, std::optional<QStringList>& out);
    // Lists whose entries may be null, kept as absent entries so the length survives.
    void optionalNullableStringList(std::string_view key, std::optional<QList<std::optional<QString>>>& out);
    // The raw element when present and not null.
    std::optional<simdjson::dom::element> optionalElement(std::string_view key);

    void fail(const QString& message);

private:
    // The value of a required key, or nothing after recording the error.
    std::optional<simdjson::dom::element> required(std::string_view key);
    void typeMismatch(std::string_view key, const char* expected);

    simdjson::dom::object m_object;
    QString m_path;
    std::optional<HomebrewError> m_error;
    QString m_message;
};

// parse() for a document whose top level must be an object: its reader, or the parse
// error, or the error of a top level that is no object.
HomebrewResult<ObjectReader> parseObject(const QByteArray& bytes);

// An integer in the signed 64-bit range; doubles and larger unsigned values are refused.
// Inline: every catalog row has up to three.
inline std::optional<qint64> integerValue(simdjson::dom::element element)
{
    int64_t value = 0;
    if (element.get_int64().get(value))
        return std::nullopt;
    return value;
}

} // namespace quillbay::json
