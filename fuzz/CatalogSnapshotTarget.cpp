#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_catalog/HomebrewCatalogIndex.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"
#include "homebrew_catalog/JsonFields.h"

namespace quillbay::fuzz {

namespace {

// The package count the manifest would have pinned: without it, every snapshot stops at
// the count check and the rows never reach the index.
qint64 packageCountOf(const QByteArray& bytes)
{
    auto parsed = json::parse(bytes);
    if (!parsed)
        return -1;
    simdjson::dom::array packages;
    if (parsed.value()["packages"].get_array().get(packages))
        return -1;
    return static_cast<qint64>(packages.size());
}

HomebrewCatalogKind kindOf(const QByteArray& bytes)
{
    return bytes.contains("\"cask\"") ? HomebrewCatalogKind::cask : HomebrewCatalogKind::formula;
}

} // namespace

void catalogSnapshot(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    const HomebrewCatalogProcessor processor;
    const QString sha256 = HomebrewCatalogProcessor::sha256Hex(bytes);
    const qint64 count = packageCountOf(bytes);
    const HomebrewCatalogKind kind = kindOf(bytes);

    const HomebrewStatus valid = processor.validateSnapshot(bytes, kind, sha256, bytes.size(), count);
    const auto rows = processor.summaries(kind, bytes, sha256, bytes.size(), count);
    // Validation and decoding are the same checks; they must agree on every input.
    if (valid.ok() != rows.ok())
        __builtin_trap();
    // A snapshot cut short by one byte never passes its pinned size.
    if (size > 0 && processor.validateSnapshot(bytes.left(bytes.size() - 1), kind, sha256, bytes.size(), count).ok())
        __builtin_trap();
    if (!rows)
        return;
    if (rows.value().size() != count)
        __builtin_trap();

    const HomebrewCatalogIndex index(rows.value());
    const QString query = rows.value().isEmpty() ? QString() : rows.value().first().identifier.left(3);
    for (const HomebrewSortOption option : allSortOptions) {
        const auto all = index.filtered(QString(), option);
        const auto some = index.filtered(query, option);
        (void)all;
        (void)some;
    }
}

} // namespace quillbay::fuzz
