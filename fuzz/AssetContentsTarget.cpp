#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"

namespace quillbay::fuzz {

void assetContents(const std::uint8_t* data, std::size_t size)
{
    AssetContent content;
    try {
        content = decodeAssetContent(bytesOf(data, size));
    } catch (const AssetMakerError&) {
        return; // the documented way to refuse a template
    }
    // Each entry's pixel size is what the renderer is asked for: a size that does not
    // parse, a bad scale or an absurd product must be refused, never computed.
    for (const AssetItem& item : content.images) {
        (void)parseAssetSize(item.size);
        try {
            const QSize pixels = assetPixelSize(item);
            if (pixels.width() < 0 || pixels.height() < 0)
                __builtin_trap();
        } catch (const AssetMakerError&) {
        }
    }
    // What the maker writes reads back as the same entries.
    try {
        if (!(decodeAssetContent(encodeAssetContent(content)) == content))
            __builtin_trap();
    } catch (const AssetMakerError&) {
        __builtin_trap();
    }
}

} // namespace quillbay::fuzz
