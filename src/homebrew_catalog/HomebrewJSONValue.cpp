#include "homebrew_catalog/HomebrewJSONValue.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "homebrew_catalog/JsonFields.h"

namespace quillbay {

HomebrewJSONValue HomebrewJSONValue::string(QString text)
{
    HomebrewJSONValue v;
    v.m_case = Case::string;
    v.m_string = std::move(text);
    return v;
}

HomebrewJSONValue HomebrewJSONValue::integer(qint64 value)
{
    HomebrewJSONValue v;
    v.m_case = Case::integer;
    v.m_integer = value;
    return v;
}

HomebrewJSONValue HomebrewJSONValue::number(double value)
{
    HomebrewJSONValue v;
    v.m_case = Case::number;
    v.m_number = value;
    return v;
}

HomebrewJSONValue HomebrewJSONValue::boolean(bool value)
{
    HomebrewJSONValue v;
    v.m_case = Case::boolean;
    v.m_bool = value;
    return v;
}

HomebrewJSONValue HomebrewJSONValue::array(Array items)
{
    HomebrewJSONValue v;
    v.m_case = Case::array;
    v.m_array = std::move(items);
    return v;
}

HomebrewJSONValue HomebrewJSONValue::object(Object members)
{
    std::stable_sort(members.begin(), members.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    // A repeated key keeps its last value, as a JSON object read into a map does.
    Object unique;
    for (auto& member : members) {
        if (!unique.empty() && unique.back().first == member.first)
            unique.back() = std::move(member);
        else
            unique.push_back(std::move(member));
    }
    HomebrewJSONValue v;
    v.m_case = Case::object;
    v.m_object = std::move(unique);
    return v;
}

HomebrewResult<HomebrewJSONValue> HomebrewJSONValue::decode(simdjson::dom::element element)
{
    using simdjson::dom::element_type;
    switch (element.type()) {
    case element_type::NULL_VALUE:
        return HomebrewJSONValue();
    case element_type::BOOL:
        return boolean(element.get_bool().value_unsafe());
    case element_type::INT64:
        return integer(element.get_int64().value_unsafe());
    case element_type::UINT64:
        // Beyond the signed range an integer does not fit; a double does.
        return number(static_cast<double>(element.get_uint64().value_unsafe()));
    case element_type::DOUBLE: {
        const double value = element.get_double().value_unsafe();
        if (std::isfinite(value) && std::trunc(value) == value && value >= -9.2233720368547758e18
            && value < 9.2233720368547758e18)
            return integer(static_cast<qint64>(value));
        return number(value);
    }
    case element_type::STRING:
        return string(json::toQString(element.get_string().value_unsafe()));
    case element_type::ARRAY: {
        Array items;
        simdjson::dom::array source;
        if (element.get_array().get(source))
            return HomebrewError::decoding(QStringLiteral("expected an array"));
        for (const simdjson::dom::element item : source) {
            auto decoded = decode(item);
            if (!decoded)
                return decoded;
            items.push_back(std::move(decoded).value());
        }
        return array(std::move(items));
    }
    case element_type::OBJECT: {
        Object members;
        simdjson::dom::object source;
        if (element.get_object().get(source))
            return HomebrewError::decoding(QStringLiteral("expected an object"));
        for (const auto field : source) {
            auto decoded = decode(field.value);
            if (!decoded)
                return decoded;
            members.emplace_back(json::toQString(field.key), std::move(decoded).value());
        }
        return object(std::move(members));
    }
    }
    return HomebrewError::decoding(QStringLiteral("unsupported JSON value"));
}

const HomebrewJSONValue* HomebrewJSONValue::member(const QString& key) const
{
    for (const auto& [name, value] : m_object)
        if (name == key)
            return &value;
    return nullptr;
}

namespace {
nlohmann::ordered_json toJson(const HomebrewJSONValue& value)
{
    switch (value.kind()) {
    case HomebrewJSONValue::Case::string:
        return value.stringValue().toStdString();
    case HomebrewJSONValue::Case::integer:
        return value.integerValue();
    case HomebrewJSONValue::Case::number:
        return value.numberValue();
    case HomebrewJSONValue::Case::boolean:
        return value.boolValue();
    case HomebrewJSONValue::Case::array: {
        nlohmann::ordered_json out = nlohmann::ordered_json::array();
        for (const auto& item : value.arrayValue())
            out.push_back(toJson(item));
        return out;
    }
    case HomebrewJSONValue::Case::object: {
        nlohmann::ordered_json out = nlohmann::ordered_json::object();
        for (const auto& [key, member] : value.objectValue())
            out[key.toStdString()] = toJson(member);
        return out;
    }
    case HomebrewJSONValue::Case::null:
        break;
    }
    return nullptr;
}
} // namespace

QByteArray HomebrewJSONValue::encoded() const
{
    return QByteArray::fromStdString(toJson(*this).dump());
}

QStringList HomebrewJSONValue::displayStrings() const
{
    switch (m_case) {
    case Case::string:
        return {m_string};
    case Case::integer:
        return {QString::number(m_integer)};
    case Case::number:
        return {QLocale().toString(m_number)};
    case Case::boolean:
        return {m_bool ? QStringLiteral("true") : QStringLiteral("false")};
    case Case::array: {
        QStringList lines;
        for (const auto& item : m_array)
            lines += item.displayStrings();
        return lines;
    }
    case Case::object: {
        QStringList lines;
        for (const auto& [key, value] : m_object)
            for (const QString& text : value.displayStrings())
                lines.append(key + QStringLiteral(": ") + text);
        return lines;
    }
    case Case::null:
        break;
    }
    return {};
}

QStringList HomebrewJSONValue::dependencyTokens() const
{
    switch (m_case) {
    case Case::array: {
        QStringList tokens;
        for (const auto& item : m_array)
            tokens += item.dependencyTokens();
        return tokens;
    }
    case Case::object: {
        QStringList tokens;
        for (const auto& [key, value] : m_object)
            tokens += value.dependencyTokens();
        return tokens;
    }
    default:
        return displayStrings();
    }
}

} // namespace quillbay
