#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_catalog/HomebrewPackageDetail.h"

namespace quillbay::fuzz {

void packageDetail(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    // The same bytes as either kind: a detail request names its kind, the server may not
    // answer with it.
    for (const HomebrewCatalogKind kind : {HomebrewCatalogKind::formula, HomebrewCatalogKind::cask}) {
        const auto detail = decodeDetail(kind, bytes);
        if (!detail)
            continue;
        const HomebrewPackageDetail& d = detail.value();
        if (d.kind() != kind)
            __builtin_trap();
        // Everything the package page derives from a decoded record.
        (void)d.id();
        (void)d.identifier();
        (void)d.dependencySections();
        (void)d.requirementLines();
        (void)d.currentVersionText();
        (void)d.replacementRoute();
        (void)d.installCommand();
        // Decoding is a function of the bytes.
        const auto again = decodeDetail(kind, bytes);
        if (!again || !(again.value() == d))
            __builtin_trap();
    }
}

} // namespace quillbay::fuzz
