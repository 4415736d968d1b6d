#include "core/state/SavedSpaceStore.h"

#include <limits>

#include "foundation/Defaults.h"

namespace quillbay {

SavedSpaceStore::SavedSpaceStore(Defaults& defaults, QString storageKey, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_storageKey(std::move(storageKey))
    , m_totalBytes(defaults.integerValue(m_storageKey, 0))
{
}

void SavedSpaceStore::add(qint64 bytes)
{
    if (bytes < 1)
        return;
    qint64 total = 0;
    if (__builtin_add_overflow(m_totalBytes, bytes, &total))
        total = std::numeric_limits<qint64>::max();
    store(total);
}

void SavedSpaceStore::reset()
{
    store(0);
}

void SavedSpaceStore::store(qint64 total)
{
    const bool changed = total != m_totalBytes;
    m_totalBytes = total;
    m_defaults.setValue(m_storageKey, total);
    if (changed)
        emit totalBytesChanged(total);
}

} // namespace quillbay
