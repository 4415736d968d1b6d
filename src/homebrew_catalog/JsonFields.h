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

inline QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
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
    QString where(const QString& key) const { return m_path.isEmpty() ? key : m_path + u'.' + key; }
    const simdjson::dom::object& object() const { return m_object; }

    void requiredString(std::string_view key, QString& out);
    void requiredInteger(std::string_view key, qint64& out);
    void requiredBool(std::string_view key, bool& out);
    void requiredStringList(std::string_view key, QStringList& out);
    void requiredObject(std::string_view key, simdjson::dom::object& out);
    void requiredArray(std::string_view key, simdjson::dom::array& out);

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
};

// An integer in the signed 64-bit range; doubles and larger unsigned values are refused.
std::optional<qint64> integerValue(simdjson::dom::element element);

} // namespace quillbay::json
