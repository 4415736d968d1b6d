#include "homebrew_cache/HomebrewCacheFolderSnapshot.h"

#include <QFile>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "foundation/PathContainment.h"

namespace quillbay {

namespace {

// Names in a cache are ASCII almost always; for those the Latin-1 conversion gives the
// same text as the file-name decoder at a fraction of its cost.
QString decodedName(const char* name, qsizetype length)
{
    for (qsizetype i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(name[i]) >= 0x80)
            return QFile::decodeName(QByteArray::fromRawData(name, length));
    }
    return QString::fromLatin1(name, length);
}

struct Work
{
    int descriptor;
    HomebrewCacheFolderSnapshot::Item* item;
};

void examineItem(const Work& work)
{
    HomebrewCacheFolderSnapshot::Item& item = *work.item;
    item.hasStatus = ::fstatat(work.descriptor, item.nativeName.constData(), &item.status, AT_SYMLINK_NOFOLLOW) == 0;
    if (!item.hasStatus || !S_ISLNK(item.status.st_mode))
        return;
    QByteArray buffer(qsizetype(item.status.st_size > 0 ? item.status.st_size + 1 : 4096), Qt::Uninitialized);
    for (;;) {
        const ssize_t length
            = ::readlinkat(work.descriptor, item.nativeName.constData(), buffer.data(), size_t(buffer.size()));
        if (length <= 0)
            return; // unreadable: the destination stays absent
        if (length < buffer.size()) {
            buffer.truncate(length);
            break;
        }
        buffer.resize(buffer.size() * 2);
    }
    const QString destination = decodedName(buffer.constData(), buffer.size());
    // Absolute destinations as they stand; relative ones against the link's folder.
    item.linkDestination = destination.startsWith(QLatin1Char('/'))
        ? destination
        : standardizedPath(item.path.left(item.path.size() - item.name.size()) + destination);
}

} // namespace

HomebrewCacheFolderSnapshot::HomebrewCacheFolderSnapshot(HomebrewCacheFolderSnapshot&& other) noexcept
    : m_folder(std::move(other.m_folder))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_items(std::move(other.m_items))
    , m_indexByPath(std::move(other.m_indexByPath))
{
}

HomebrewCacheFolderSnapshot& HomebrewCacheFolderSnapshot::operator=(HomebrewCacheFolderSnapshot&& other) noexcept
{
    std::swap(m_folder, other.m_folder);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_items, other.m_items);
    std::swap(m_indexByPath, other.m_indexByPath);
    return *this;
}

HomebrewCacheFolderSnapshot::~HomebrewCacheFolderSnapshot()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::optional<HomebrewCacheFolderSnapshot> HomebrewCacheFolderSnapshot::list(const QString& folder, QString* errorText)
{
    const auto fail = [errorText](int error) {
        if (errorText)
            *errorText = QString::fromLocal8Bit(std::strerror(error));
        return std::nullopt;
    };
    HomebrewCacheFolderSnapshot snapshot;
    snapshot.m_folder = folder;
    snapshot.m_descriptor
        = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (snapshot.m_descriptor < 0)
        return fail(errno);
    const int listing = ::dup(snapshot.m_descriptor);
    DIR* stream = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!stream) {
        const int error = errno;
        if (listing >= 0)
            ::close(listing);
        return fail(error);
    }
    const QString prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    for (;;) {
        errno = 0;
        const dirent* child = ::readdir(stream);
        if (!child) {
            if (errno != 0) {
                const int error = errno;
                ::closedir(stream);
                return fail(error);
            }
            break;
        }
        const char* name = child->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
            continue;
        const qsizetype length = qsizetype(std::strlen(name));
        Item item;
        item.nativeName = QByteArray(name, length);
        item.name = decodedName(name, length);
        item.path.reserve(prefix.size() + item.name.size());
        item.path.append(prefix).append(item.name);
        snapshot.m_items.push_back(std::move(item));
    }
    ::closedir(stream);
    snapshot.m_indexByPath.reserve(qsizetype(snapshot.m_items.size()));
    for (size_t i = 0; i < snapshot.m_items.size(); ++i)
        snapshot.m_indexByPath.insert(snapshot.m_items[i].path, qsizetype(i));
    return snapshot;
}

void HomebrewCacheFolderSnapshot::examine(std::initializer_list<HomebrewCacheFolderSnapshot*> snapshots,
                                          const std::function<void()>& alongside)
{
    std::vector<Work> work;
    for (HomebrewCacheFolderSnapshot* snapshot : snapshots) {
        if (!snapshot)
            continue;
        for (Item& item : snapshot->m_items)
            work.push_back(Work {snapshot->m_descriptor, &item});
    }
    // Items are handed out in small batches from one counter, so a thread that starts
    // late (the caller, after `alongside`) or runs slow (links cost a second call) simply
    // takes fewer. Each item is written by exactly one thread and read only after the
    // join. Small folders aren't worth a thread.
    constexpr size_t kBatch = 64;
    constexpr size_t kItemsPerHelper = 1024;
    std::atomic<size_t> next {0};
    const auto drain = [&work, &next] {
        for (;;) {
            const size_t first = next.fetch_add(kBatch, std::memory_order_relaxed);
            if (first >= work.size())
                return;
            const size_t last = std::min(work.size(), first + kBatch);
            for (size_t i = first; i < last; ++i)
                examineItem(work[i]);
        }
    };
    const size_t cores = size_t(std::max(1, QThread::idealThreadCount()));
    // The caller is busy with `alongside` at first, so on one core a helper still pays.
    const size_t helpers
        = std::min<size_t>({std::max<size_t>(cores, alongside ? 2 : 1) - 1, 3, work.size() / kItemsPerHelper});
    std::vector<std::jthread> threads;
    threads.reserve(helpers);
    for (size_t t = 0; t < helpers; ++t)
        threads.emplace_back(drain);
    if (alongside)
        alongside();
    drain();
}

const HomebrewCacheFolderSnapshot::Item* HomebrewCacheFolderSnapshot::find(const QString& path) const
{
    const auto found = m_indexByPath.constFind(path);
    return found == m_indexByPath.cend() ? nullptr : &m_items[size_t(*found)];
}

HomebrewCacheFileSystem::Measurement
HomebrewCacheFolderSnapshot::measure(const Item& item, HomebrewCacheFileSystem::VisitedSet& visited) const
{
    return HomebrewCacheFileSystem::measureWithStatus(item.status, m_descriptor, item.nativeName, visited);
}

} // namespace quillbay
