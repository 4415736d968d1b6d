#include "homebrew_cache/HomebrewCacheFolderSnapshot.h"

#include <QFile>
#include <QStringBuilder>
#include <bit>
#include <cerrno>
#include <cstring>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "foundation/PathContainment.h"

namespace quillbay {

namespace {

bool isAscii(std::string_view bytes)
{
    unsigned char any = 0;
    for (const char c : bytes)
        any |= static_cast<unsigned char>(c);
    return any < 0x80;
}

// Names in a cache are ASCII almost always; for those the Latin-1 conversion gives the
// same text as the file-name decoder at a fraction of its cost.
QString decodedName(std::string_view bytes, bool ascii)
{
    if (ascii)
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    return QFile::decodeName(QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size())));
}

// Eight bytes at a time: cache names run to a hundred characters.
size_t hashOf(std::string_view bytes)
{
    quint64 hash = 0x243F6A8885A308D3ULL ^ bytes.size();
    size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        quint64 word;
        std::memcpy(&word, bytes.data() + at, 8);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15ULL;
        hash ^= hash >> 32;
    }
    quint64 tail = 0;
    std::memcpy(&tail, bytes.data() + at, bytes.size() - at);
    hash = (hash ^ tail) * 0x9E3779B97F4A7C15ULL;
    return size_t(hash ^ (hash >> 29));
}

} // namespace

HomebrewCacheFolderSnapshot::HomebrewCacheFolderSnapshot(HomebrewCacheFolderSnapshot&& other) noexcept
    : m_folder(std::move(other.m_folder))
    , m_prefix(std::move(other.m_prefix))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_names(std::move(other.m_names))
    , m_items(std::move(other.m_items))
    , m_asciiIndex(std::move(other.m_asciiIndex))
    , m_indexByPath(std::move(other.m_indexByPath))
{
}

HomebrewCacheFolderSnapshot& HomebrewCacheFolderSnapshot::operator=(HomebrewCacheFolderSnapshot&& other) noexcept
{
    std::swap(m_folder, other.m_folder);
    std::swap(m_prefix, other.m_prefix);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_names, other.m_names);
    std::swap(m_items, other.m_items);
    std::swap(m_asciiIndex, other.m_asciiIndex);
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
    snapshot.m_prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
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
        const std::string_view bytes(name);
        Item& item = snapshot.m_items.emplace_back();
        item.nameOffset = quint32(snapshot.m_names.size());
        item.nameSize = quint32(bytes.size());
        item.isAscii = isAscii(bytes);
        snapshot.m_names.append(bytes).push_back('\0');
    }
    ::closedir(stream);
    return snapshot;
}

void HomebrewCacheFolderSnapshot::examine(size_t index)
{
    Item& item = m_items[index];
    const char* name = m_names.data() + item.nameOffset;
    struct stat st
    {
    };
    item.hasStatus = ::fstatat(m_descriptor, name, &st, AT_SYMLINK_NOFOLLOW) == 0;
    if (!item.hasStatus)
        return;
    item.status = HomebrewCacheFileSystem::ItemStatus::of(st);
    if (!S_ISLNK(st.st_mode))
        return;
    std::string& text = item.linkText;
    text.resize(st.st_size > 0 ? size_t(st.st_size) + 1 : 4096);
    for (;;) {
        const ssize_t length = ::readlinkat(m_descriptor, name, text.data(), text.size());
        if (length <= 0) {
            text.clear(); // unreadable: the destination stays absent
            return;
        }
        if (size_t(length) < text.size()) {
            text.resize(size_t(length));
            return;
        }
        text.resize(text.size() * 2); // the link grew since fstatat
    }
}

void HomebrewCacheFolderSnapshot::walkAhead(size_t index)
{
    Item& item = m_items[index];
    if (item.hasStatus && S_ISDIR(item.status.mode))
        item.walk = std::make_unique<const HomebrewCacheFolderWalk>(
            HomebrewCacheFolderWalk::record(m_descriptor, m_names.data() + item.nameOffset, item.status));
}

QString HomebrewCacheFolderSnapshot::name(const Item& item) const
{
    return decodedName(nameBytes(item), item.isAscii);
}

QString HomebrewCacheFolderSnapshot::path(const Item& item) const
{
    if (!item.isAscii)
        return m_prefix + name(item);
    const std::string_view bytes = nameBytes(item);
    return m_prefix % QLatin1StringView(bytes.data(), qsizetype(bytes.size())); // one allocation
}

std::optional<QString> HomebrewCacheFolderSnapshot::linkDestination(const Item& item) const
{
    if (item.linkText.empty())
        return std::nullopt;
    const std::string_view text(item.linkText);
    const QString destination = decodedName(text, isAscii(text));
    // Absolute destinations as they stand; relative ones against the link's folder.
    if (destination.startsWith(QLatin1Char('/')))
        return destination;
    return standardizedPath(m_prefix + destination);
}

const HomebrewCacheFolderSnapshot::Item* HomebrewCacheFolderSnapshot::find(const QString& path) const
{
    if (!m_indexByPath) {
        QHash<QString, qsizetype> index;
        index.reserve(qsizetype(m_items.size()));
        for (size_t i = 0; i < m_items.size(); ++i)
            index.insert(this->path(m_items[i]), qsizetype(i));
        m_indexByPath = std::move(index);
    }
    const auto found = m_indexByPath->constFind(path);
    return found == m_indexByPath->cend() ? nullptr : &m_items[size_t(*found)];
}

void HomebrewCacheFolderSnapshot::indexAsciiNames()
{
    m_asciiIndex.assign(std::bit_ceil(std::max<size_t>(16, m_items.size() * 2)), 0);
    const size_t mask = m_asciiIndex.size() - 1;
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (!m_items[i].isAscii)
            continue;
        size_t at = hashOf(nameBytes(m_items[i])) & mask;
        while (m_asciiIndex[at] != 0)
            at = (at + 1) & mask;
        m_asciiIndex[at] = quint32(i + 1);
    }
}

qsizetype HomebrewCacheFolderSnapshot::findAscii(std::string_view name) const
{
    if (m_asciiIndex.empty())
        return -1;
    const size_t mask = m_asciiIndex.size() - 1;
    for (size_t at = hashOf(name) & mask; m_asciiIndex[at] != 0; at = (at + 1) & mask) {
        const size_t index = m_asciiIndex[at] - 1;
        if (nameBytes(m_items[index]) == name)
            return qsizetype(index);
    }
    return -1;
}

HomebrewCacheFileSystem::Measurement
HomebrewCacheFolderSnapshot::measure(const Item& item, HomebrewCacheFileSystem::VisitedSet& visited) const
{
    if (item.walk)
        return item.walk->measure(visited);
    return HomebrewCacheFileSystem::measureWithStatus(item.status, m_descriptor, m_names.data() + item.nameOffset,
                                                      visited);
}

} // namespace quillbay
