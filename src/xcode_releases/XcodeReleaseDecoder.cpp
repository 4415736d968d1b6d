#include "xcode_releases/XcodeReleaseDecoder.h"

#include <string_view>

#include <simdjson.h>

namespace quillbay {

namespace {

using simdjson::dom::array;
using simdjson::dom::element;
using simdjson::dom::object;

QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A key that is missing or null is absent; present with any other value it is there.
std::optional<element> optionalField(const object& parent, std::string_view key)
{
    element value;
    if (parent.at_key(key).get(value) != simdjson::SUCCESS || value.is_null())
        return std::nullopt;
    return value;
}

bool readString(const element& value, QString& out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        return false;
    out = toQString(text);
    return true;
}

bool requiredString(const object& parent, std::string_view key, QString& out)
{
    element value;
    if (parent.at_key(key).get(value) != simdjson::SUCCESS)
        return false;
    return readString(value, out);
}

bool optionalString(const object& parent, std::string_view key, std::optional<QString>& out)
{
    const std::optional<element> value = optionalField(parent, key);
    if (!value)
        return true;
    QString text;
    if (!readString(*value, text))
        return false;
    out = std::move(text);
    return true;
}

bool requiredInteger(const object& parent, std::string_view key, qint64& out)
{
    element value;
    int64_t number = 0;
    if (parent.at_key(key).get(value) != simdjson::SUCCESS || value.get_int64().get(number) != simdjson::SUCCESS)
        return false;
    out = number;
    return true;
}

// An integer first, a boolean next, and anything else is kept as unknown: never an error.
XcodeRelease::BoolOrInt readBoolOrInt(const element& value)
{
    int64_t number = 0;
    if (value.get_int64().get(number) == simdjson::SUCCESS)
        return XcodeRelease::BoolOrInt::fromInt(number);
    bool flag = false;
    if (value.get_bool().get(flag) == simdjson::SUCCESS)
        return XcodeRelease::BoolOrInt::fromBool(flag);
    return XcodeRelease::BoolOrInt::unknown();
}

template <typename Item, typename ReadItem>
bool optionalArray(const object& parent, std::string_view key, std::optional<QList<Item>>& out, ReadItem readItem)
{
    const std::optional<element> value = optionalField(parent, key);
    if (!value)
        return true;
    array items;
    if (value->get_array().get(items) != simdjson::SUCCESS)
        return false;
    QList<Item> list;
    list.reserve(static_cast<qsizetype>(items.size()));
    for (const element item : items) {
        Item decoded;
        if (!readItem(item, decoded))
            return false;
        list.append(std::move(decoded));
    }
    out = std::move(list);
    return true;
}

template <typename Record, typename ReadRecord>
bool optionalObject(const object& parent, std::string_view key, std::optional<Record>& out, ReadRecord readRecord)
{
    const std::optional<element> value = optionalField(parent, key);
    if (!value)
        return true;
    object fields;
    if (value->get_object().get(fields) != simdjson::SUCCESS)
        return false;
    Record record;
    if (!readRecord(fields, record))
        return false;
    out = std::move(record);
    return true;
}

bool readCompilerInfo(const element& value, XcodeRelease::CompilerInfo& out)
{
    object fields;
    return value.get_object().get(fields) == simdjson::SUCCESS && optionalString(fields, "build", out.build)
        && requiredString(fields, "number", out.number);
}

bool readSDKInfo(const element& value, XcodeRelease::SDKInfo& out)
{
    object fields;
    return value.get_object().get(fields) == simdjson::SUCCESS && optionalString(fields, "build", out.build)
        && optionalString(fields, "number", out.number);
}

bool readCompilers(const object& fields, XcodeRelease::Compilers& out)
{
    return optionalArray(fields, "clang", out.clang, readCompilerInfo)
        && optionalArray(fields, "swift", out.swift, readCompilerInfo);
}

bool readSDKs(const object& fields, XcodeRelease::SDKs& out)
{
    return optionalArray(fields, "iOS", out.iOS, readSDKInfo) && optionalArray(fields, "macOS", out.macOS, readSDKInfo)
        && optionalArray(fields, "tvOS", out.tvOS, readSDKInfo)
        && optionalArray(fields, "visionOS", out.visionOS, readSDKInfo)
        && optionalArray(fields, "watchOS", out.watchOS, readSDKInfo);
}

bool readLinkInfo(const object& fields, XcodeRelease::LinkInfo& out)
{
    const auto readArchitecture = [](const element& value, QString& text) { return readString(value, text); };
    return requiredString(fields, "url", out.url)
        && optionalArray(fields, "architectures", out.architectures, readArchitecture);
}

bool readLinks(const object& fields, XcodeRelease::Links& out)
{
    return optionalObject(fields, "download", out.download, readLinkInfo)
        && optionalObject(fields, "notes", out.notes, readLinkInfo);
}

bool readVersionInfo(const object& fields, XcodeRelease::VersionInfo& out)
{
    if (!requiredString(fields, "build", out.build) || !requiredString(fields, "number", out.number))
        return false;
    element releaseValue;
    object releaseFields;
    if (fields.at_key("release").get(releaseValue) != simdjson::SUCCESS
        || releaseValue.get_object().get(releaseFields) != simdjson::SUCCESS)
        return false;
    for (const auto field : releaseFields) {
        const QString key = toQString(field.key);
        const XcodeRelease::BoolOrInt value = readBoolOrInt(field.value);
        // A repeated key keeps its first place and its last value, as a dictionary would.
        auto existing = std::find_if(out.release.begin(), out.release.end(),
                                     [&key](const auto& entry) { return entry.first == key; });
        if (existing != out.release.end())
            existing->second = value;
        else
            out.release.append({key, value});
    }
    return true;
}

bool readDate(const element& value, XcodeRelease::DateInfo& out)
{
    object fields;
    return value.get_object().get(fields) == simdjson::SUCCESS && requiredInteger(fields, "day", out.day)
        && requiredInteger(fields, "month", out.month) && requiredInteger(fields, "year", out.year);
}

bool readRelease(const element& value, XcodeRelease& out)
{
    object fields;
    element date;
    if (value.get_object().get(fields) != simdjson::SUCCESS || !requiredString(fields, "name", out.name)
        || !requiredString(fields, "requires", out.requires_) || fields.at_key("date").get(date) != simdjson::SUCCESS
        || !readDate(date, out.date))
        return false;
    if (!optionalObject(fields, "compilers", out.compilers, readCompilers)
        || !optionalObject(fields, "links", out.links, readLinks) || !optionalObject(fields, "sdks", out.sdks, readSDKs)
        || !optionalObject(fields, "version", out.version, readVersionInfo))
        return false;
    out.id = QUuid::createUuid();
    return true;
}

} // namespace

std::optional<QList<XcodeRelease>> decodeXcodeReleases(const QByteArray& bytes)
{
    // One parser per thread keeps its buffers between calls; the document lives in it
    // only until the records are copied out below.
    thread_local simdjson::dom::parser parser;
    element document;
    if (parser.parse(bytes.constData(), static_cast<size_t>(bytes.size())).get(document) != simdjson::SUCCESS)
        return std::nullopt;
    array items;
    if (document.get_array().get(items) != simdjson::SUCCESS)
        return std::nullopt;
    QList<XcodeRelease> releases;
    releases.reserve(static_cast<qsizetype>(items.size()));
    for (const element item : items) {
        XcodeRelease release;
        if (!readRelease(item, release))
            return std::nullopt;
        releases.append(std::move(release));
    }
    return releases;
}

} // namespace quillbay
