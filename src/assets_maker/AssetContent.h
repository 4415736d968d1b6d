#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "assets_maker/AssetItem.h"

namespace quillbay {

// The whole of an icon set's "Contents.json" as the maker reads and writes it: the
// entries alone. Any other key of a template (an "info" block, roles, appearances) is
// dropped on reading, so the written file carries "images" and nothing else.
struct AssetContent
{
    QList<AssetItem> images;

    bool operator==(const AssetContent&) const = default;
};

// Decodes a template. Throws AssetMakerError when the bytes are no JSON object with an
// "images" array of entries that each have the three required strings.
AssetContent decodeAssetContent(const QByteArray& json);

// Pretty-printed JSON: two-space indent, `"key" : value`, keys of an entry in the order
// idiom, platform, size, filename, scale, and absent optional keys left out.
QByteArray encodeAssetContent(const AssetContent& content);

// Reads <folder>/<fileName>; a missing file and undecodable bytes throw AssetMakerError.
AssetContent readAssetContent(const QString& folder, const QString& fileName);

// Writes <folder>/Contents.json atomically; throws AssetMakerError when it cannot.
void writeAssetContents(const AssetContent& content, const QString& folder);

} // namespace quillbay
