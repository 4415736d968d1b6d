#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"

namespace quillbay::fuzz {

void catalogManifest(const std::uint8_t* data, std::size_t size)
{
    const HomebrewCatalogProcessor processor;
    const auto manifest = processor.validatedManifest(bytesOf(data, size));
    if (!manifest)
        return;
    // What the manifest promises is what a snapshot download is later held to, so an
    // accepted manifest must pin both artifacts to something a download can match.
    for (const HomebrewCatalogKind kind : {HomebrewCatalogKind::formula, HomebrewCatalogKind::cask}) {
        const auto& artifact = manifest.value().artifact(kind);
        if (artifact.byteCount < 1 || artifact.packageCount < 1 || artifact.sha256.size() != 64)
            __builtin_trap();
        if (!artifact.path.contains(manifest.value().snapshotID))
            __builtin_trap();
    }
}

} // namespace quillbay::fuzz
