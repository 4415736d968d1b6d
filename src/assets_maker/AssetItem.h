#pragma once

#include <QString>
#include <optional>

namespace quillbay {

// One entry of an icon set. idiom and platform are carried through untouched; size is in
// points ("83.5x83.5"); an absent scale means 1x and stays absent in the output.
struct AssetItem
{
    QString idiom;
    std::optional<QString> platform;
    QString size;
    QString filename;
    std::optional<QString> scale;

    bool operator==(const AssetItem&) const = default;
};

} // namespace quillbay
