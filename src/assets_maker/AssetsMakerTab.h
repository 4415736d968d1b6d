#pragma once

namespace quillbay {

// The tabs of the assets maker, in screen order.
enum class AssetsMakerTab {
    appIcon,
    imageSet,
};

} // namespace quillbay
