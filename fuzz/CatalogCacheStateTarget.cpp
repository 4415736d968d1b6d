#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_catalog/HomebrewCacheService.h"
#include "homebrew_catalog/JsonFields.h"

namespace quillbay::fuzz {

namespace {

const QDateTime kReferenceDate(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);

// The number stored under `key`, read on its own.
std::optional<double> numberAt(const QByteArray& bytes, const char* key)
{
    auto parsed = json::parse(bytes);
    double value = 0;
    if (!parsed || parsed.value()[key].get_double().get(value))
        return std::nullopt;
    return value;
}

// Any number is a date, however far off, and it keeps its side of the reference date: a
// far-future date must still read as fresh, not wrap around into the past.
void checkDate(const QDateTime& date, std::optional<double> seconds)
{
    if (!date.isValid())
        __builtin_trap();
    if (seconds && *seconds >= 1 && date <= kReferenceDate)
        __builtin_trap();
    if (seconds && *seconds <= -1 && date >= kReferenceDate)
        __builtin_trap();
}

} // namespace

// The catalog cache's own files (the sidecar of each cached body and the refresh state)
// come back from disk, where a crash mid-write, another program or a full disk may have
// left anything in them.
void catalogCacheState(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    if (const auto metadata = HomebrewCacheService::decodeMetadata(bytes)) {
        checkDate(metadata.value().fetchedAt, numberAt(bytes, "fetchedAt"));
        const auto again = HomebrewCacheService::decodeMetadata(bytes);
        if (!again || !(again.value() == metadata.value()))
            __builtin_trap();
    }
    if (const auto state = HomebrewCacheService::decodeRefreshState(bytes)) {
        if (state.value().lastCheckDate)
            checkDate(*state.value().lastCheckDate, numberAt(bytes, "lastCheckDate"));
        if (state.value().lastSuccessfulRefreshDate)
            checkDate(*state.value().lastSuccessfulRefreshDate, numberAt(bytes, "lastSuccessfulRefreshDate"));
        const auto again = HomebrewCacheService::decodeRefreshState(bytes);
        if (!again || !(again.value() == state.value()))
            __builtin_trap();
    }
}

} // namespace quillbay::fuzz
