#include "homebrew_catalog/JsonFields.h"

namespace quillbay::json {

HomebrewResult<simdjson::dom::element> parse(const QByteArray& bytes)
{
    thread_local simdjson::dom::parser parser;
    // simdjson reads up to SIMDJSON_PADDING bytes past the end. When the array already
    // owns that much spare room the bytes are parsed in place, saving a copy.
    const bool padded = bytes.capacity() - bytes.size() >= static_cast<qsizetype>(simdjson::SIMDJSON_PADDING);
    simdjson::dom::element element;
    const auto error = parser.parse(bytes.constData(), static_cast<size_t>(bytes.size()), !padded).get(element);
    if (error)
        return HomebrewError::decoding(QString::fromLatin1(simdjson::error_message(error)));
    return element;
}

HomebrewResult<ObjectReader> parseObject(const QByteArray& bytes)
{
    auto parsed = parse(bytes);
    if (!parsed)
        return parsed.error();
    ObjectReader object(parsed.value());
    if (!object.ok())
        return object.error();
    return object;
}

ObjectReader::ObjectReader(simdjson::dom::element element, QString path)
    : m_path(std::move(path))
{
    if (element.get_object().get(m_object))
        fail(QStringLiteral("expected an object at %1")
                 .arg(m_path.isEmpty() ? QStringLiteral("the top level") : m_path));
}

ObjectReader::ObjectReader(simdjson::dom::object object, QString path)
    : m_object(object)
    , m_path(std::move(path))
{
}

void ObjectReader::fail(const QString& message)
{
    if (m_error)
        return;
    m_error = HomebrewError::decoding(message);
    m_message = message;
}

void ObjectReader::expectString(std::string_view key)
{
    const auto value = required(key);
    if (value && !value->is_string())
        typeMismatch(key, "a string");
}

void ObjectReader::expectStringList(std::string_view key)
{
    const auto value = required(key);
    if (!value)
        return;
    simdjson::dom::array array;
    if (value->get_array().get(array))
        return typeMismatch(key, "an array of strings");
    for (const simdjson::dom::element item : array)
        if (!item.is_string())
            return typeMismatch(key, "an array of strings");
}

void ObjectReader::expectBool(std::string_view key)
{
    const auto value = required(key);
    if (value && !value->is_bool())
        typeMismatch(key, "a boolean");
}

void ObjectReader::typeMismatch(std::string_view key, const char* expected)
{
    fail(QStringLiteral("expected %1 at %2").arg(QLatin1String(expected), where(toQString(key))));
}

std::optional<simdjson::dom::element> ObjectReader::required(std::string_view key)
{
    if (m_error)
        return std::nullopt;
    simdjson::dom::element value;
    if (m_object.at_key(key).get(value)) {
        fail(QStringLiteral("missing key %1").arg(where(toQString(key))));
        return std::nullopt;
    }
    return value;
}

std::optional<simdjson::dom::element> ObjectReader::optionalElement(std::string_view key)
{
    if (m_error)
        return std::nullopt;
    simdjson::dom::element value;
    if (m_object.at_key(key).get(value) || value.is_null())
        return std::nullopt;
    return value;
}

void ObjectReader::requiredString(std::string_view key, QString& out)
{
    const auto value = required(key);
    if (!value)
        return;
    std::string_view text;
    if (value->get_string().get(text))
        return typeMismatch(key, "a string");
    out = toQString(text);
}

void ObjectReader::requiredInteger(std::string_view key, qint64& out)
{
    const auto value = required(key);
    if (!value)
        return;
    const auto number = integerValue(*value);
    if (!number)
        return typeMismatch(key, "an integer");
    out = *number;
}

void ObjectReader::requiredBool(std::string_view key, bool& out)
{
    const auto value = required(key);
    if (!value)
        return;
    if (value->get_bool().get(out))
        typeMismatch(key, "a boolean");
}

namespace {
bool readStringList(simdjson::dom::element value, QStringList& out)
{
    simdjson::dom::array array;
    if (value.get_array().get(array))
        return false;
    out.reserve(static_cast<qsizetype>(array.size()));
    for (const simdjson::dom::element item : array) {
        std::string_view text;
        if (item.get_string().get(text))
            return false;
        out.append(toQString(text));
    }
    return true;
}
} // namespace

void ObjectReader::requiredStringList(std::string_view key, QStringList& out)
{
    const auto value = required(key);
    if (!value)
        return;
    if (!readStringList(*value, out))
        typeMismatch(key, "an array of strings");
}

void ObjectReader::requiredObject(std::string_view key, simdjson::dom::object& out)
{
    const auto value = required(key);
    if (!value)
        return;
    if (value->get_object().get(out))
        typeMismatch(key, "an object");
}

void ObjectReader::requiredArray(std::string_view key, simdjson::dom::array& out)
{
    const auto value = required(key);
    if (!value)
        return;
    if (value->get_array().get(out))
        typeMismatch(key, "an array");
}

void ObjectReader::optionalString(std::string_view key, std::optional<QString>& out)
{
    const auto value = optionalElement(key);
    if (!value)
        return;
    std::string_view text;
    if (value->get_string().get(text))
        return typeMismatch(key, "a string");
    out = toQString(text);
}

void ObjectReader::optionalInteger(std::string_view key, std::optional<qint64>& out)
{
    const auto value = optionalElement(key);
    if (!value)
        return;
    out = integerValue(*value);
    if (!out)
        typeMismatch(key, "an integer");
}

void ObjectReader::optionalBool(std::string_view key, std::optional<bool>& out)
{
    const auto value = optionalElement(key);
    if (!value)
        return;
    bool flag = false;
    if (value->get_bool().get(flag))
        return typeMismatch(key, "a boolean");
    out = flag;
}

void ObjectReader::optionalStringList(std::string_view key, std::optional<QStringList>& out)
{
    const auto value = optionalElement(key);
    if (!value)
        return;
    QStringList list;
    if (!readStringList(*value, list))
        return typeMismatch(key, "an array of strings");
    out = std::move(list);
}

void ObjectReader::optionalNullableStringList(std::string_view key, std::optional<QList<std::optional<QString>>>& out)
{
    const auto value = optionalElement(key);
    if (!value)
        return;
    simdjson::dom::array array;
    if (value->get_array().get(array))
        return typeMismatch(key, "an array");
    QList<std::optional<QString>> list;
    for (const simdjson::dom::element item : array) {
        if (item.is_null()) {
            list.append(std::nullopt);
            continue;
        }
        std::string_view text;
        if (item.get_string().get(text))
            return typeMismatch(key, "an array of strings or nulls");
        list.append(toQString(text));
    }
    out = std::move(list);
}

} // namespace quillbay::json
