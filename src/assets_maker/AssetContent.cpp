#include "assets_maker/AssetContent.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <string>

#include <nlohmann/json.hpp>

#include "assets_maker/AssetMakerError.h"
#include "foundation/AtomicFile.h"

using namespace Qt::StringLiterals;
using nlohmann::ordered_json;

namespace quillbay {

namespace {

QString requiredString(const ordered_json& entry, const char* key)
{
    const auto it = entry.find(key);
    if (it == entry.end() || it->is_null())
        throw AssetMakerError::missingValue();
    if (!it->is_string())
        throw AssetMakerError::corruptData();
    return QString::fromStdString(it->get<std::string>());
}

std::optional<QString> optionalString(const ordered_json& entry, const char* key)
{
    const auto it = entry.find(key);
    if (it == entry.end() || it->is_null())
        return std::nullopt;
    if (!it->is_string())
        throw AssetMakerError::corruptData();
    return QString::fromStdString(it->get<std::string>());
}

ordered_json entryJson(const AssetItem& item)
{
    ordered_json entry = ordered_json::object();
    entry["idiom"] = item.idiom.toStdString();
    if (item.platform)
        entry["platform"] = item.platform->toStdString();
    entry["size"] = item.size.toStdString();
    entry["filename"] = item.filename.toStdString();
    if (item.scale)
        entry["scale"] = item.scale->toStdString();
    return entry;
}

// Strings as the asset catalog tools write them: JSON escapes, and "/" escaped as well.
void appendString(std::string& out, const std::string& text)
{
    const std::string escaped = ordered_json(text).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    for (const char c : escaped) {
        if (c == '/')
            out += "\\/";
        else
            out += c;
    }
}

void appendValue(std::string& out, const ordered_json& value, int depth)
{
    const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
    const std::string inner(static_cast<std::size_t>(depth + 1) * 2, ' ');
    if (value.is_object()) {
        if (value.empty()) {
            out += "{\n\n" + indent + "}";
            return;
        }
        out += "{\n";
        bool first = true;
        for (const auto& [key, member] : value.items()) {
            if (!first)
                out += ",\n";
            first = false;
            out += inner;
            appendString(out, key);
            out += " : ";
            appendValue(out, member, depth + 1);
        }
        out += "\n" + indent + "}";
    } else if (value.is_array()) {
        if (value.empty()) {
            out += "[\n\n" + indent + "]";
            return;
        }
        out += "[\n";
        bool first = true;
        for (const auto& element : value) {
            if (!first)
                out += ",\n";
            first = false;
            out += inner;
            appendValue(out, element, depth + 1);
        }
        out += "\n" + indent + "]";
    } else if (value.is_string()) {
        appendString(out, value.get<std::string>());
    } else {
        out += value.dump();
    }
}

} // namespace

AssetContent decodeAssetContent(const QByteArray& json)
{
    const ordered_json document = ordered_json::parse(json.cbegin(), json.cend(), nullptr, false);
    if (document.is_discarded() || !document.is_object())
        throw AssetMakerError::corruptData();
    const auto images = document.find("images");
    if (images == document.end() || images->is_null())
        throw AssetMakerError::missingValue();
    if (!images->is_array())
        throw AssetMakerError::corruptData();
    AssetContent content;
    content.images.reserve(static_cast<qsizetype>(images->size()));
    for (const ordered_json& entry : *images) {
        if (!entry.is_object())
            throw AssetMakerError::corruptData();
        AssetItem item;
        item.idiom = requiredString(entry, "idiom");
        item.platform = optionalString(entry, "platform");
        item.size = requiredString(entry, "size");
        item.filename = requiredString(entry, "filename");
        item.scale = optionalString(entry, "scale");
        content.images.append(std::move(item));
    }
    return content;
}

QByteArray encodeAssetContent(const AssetContent& content)
{
    ordered_json document = ordered_json::object();
    ordered_json images = ordered_json::array();
    for (const AssetItem& item : content.images)
        images.push_back(entryJson(item));
    document["images"] = std::move(images);
    std::string out;
    appendValue(out, document, 0);
    return QByteArray::fromStdString(out);
}

AssetContent readAssetContent(const QString& folder, const QString& fileName)
{
    QFile file(QDir(folder).filePath(fileName));
    if (!file.exists())
        throw AssetMakerError::noSuchFile(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw AssetMakerError::noSuchFile(fileName);
    return decodeAssetContent(file.readAll());
}

void writeAssetContents(const AssetContent& content, const QString& folder)
{
    const QString name = u"Contents.json"_s;
    QString error;
    if (!writeFileAtomically(QDir(folder).filePath(name), encodeAssetContent(content), &error))
        throw AssetMakerError::writeFailed(name, error);
}

} // namespace quillbay
