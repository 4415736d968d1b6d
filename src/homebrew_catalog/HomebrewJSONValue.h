#pragma once

#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

#include <simdjson.h>

#include "homebrew_catalog/HomebrewError.h"

namespace quillbay {

// A JSON value of a field whose shape varies from package to package (keg-only reasons,
// requirements, cask dependencies). Kept whole so that it can be shown as text lines
// without the program knowing each shape.
class HomebrewJSONValue
{
public:
    enum class Case { string, integer, number, boolean, array, object, null };
    using Array = std::vector<HomebrewJSONValue>;
    // Sorted by key; a key occurs once.
    using Object = std::vector<std::pair<QString, HomebrewJSONValue>>;

    HomebrewJSONValue() = default;
    static HomebrewJSONValue string(QString text);
    static HomebrewJSONValue integer(qint64 value);
    static HomebrewJSONValue number(double value);
    static HomebrewJSONValue boolean(bool value);
    static HomebrewJSONValue array(Array items);
    static HomebrewJSONValue object(Object members);

    // Null first, then boolean, integer, double, text, array, object: the first that fits
    // wins, so a whole number is an integer and true never becomes a number.
    static HomebrewResult<HomebrewJSONValue> decode(simdjson::dom::element element);

    Case kind() const { return m_case; }
    const QString& stringValue() const { return m_string; }
    qint64 integerValue() const { return m_integer; }
    double numberValue() const { return m_number; }
    bool boolValue() const { return m_bool; }
    const Array& arrayValue() const { return m_array; }
    const Object& objectValue() const { return m_object; }
    // The member under the key, or nullptr.
    const HomebrewJSONValue* member(const QString& key) const;

    // The value as JSON text again.
    QByteArray encoded() const;

    // Flat text lines: objects give "key: text" per line of each value, keys ascending.
    QStringList displayStrings() const;
    // The same walk for cask dependencies, where objects give their values' tokens with no
    // key prefix.
    QStringList dependencyTokens() const;

    friend bool operator==(const HomebrewJSONValue&, const HomebrewJSONValue&) = default;

private:
    Case m_case = Case::null;
    QString m_string;
    qint64 m_integer = 0;
    double m_number = 0;
    bool m_bool = false;
    Array m_array;
    Object m_object;
};

} // namespace quillbay
