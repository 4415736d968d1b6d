#include "homebrew_cache/HomebrewCacheFolderWalk.h"

#include <cerrno>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace quillbay {

namespace {

using FS = HomebrewCacheFileSystem;

constexpr int kOpenFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

} // namespace

HomebrewCacheFolderWalk
HomebrewCacheFolderWalk::record(int parentDescriptor, const char* name, const FS::ItemStatus& status)
{
    HomebrewCacheFolderWalk walk;
    Node root;
    root.identity = {status.device, status.inode};
    root.blocks = status.blocks;
    root.isDirectory = S_ISDIR(status.mode);
    root.isIncomplete = FS::hasIncompleteSuffix(name);
    walk.m_nodes.push_back(root);
    if (root.isDirectory) {
        const int folder = ::openat(parentDescriptor, name, kOpenFolderFlags);
        if (folder < 0)
            walk.m_nodes[0].openFailed = true;
        else
            walk.recordFolder(0, folder);
    }
    walk.m_nodes[0].end = quint32(walk.m_nodes.size());
    return walk;
}

// Takes over `folder`.
void HomebrewCacheFolderWalk::recordFolder(size_t node, int folder)
{
    DIR* stream = ::fdopendir(folder);
    if (!stream) {
        ::close(folder);
        m_nodes[node].openFailed = true;
        return;
    }
    const int descriptor = ::dirfd(stream);
    for (;;) {
        errno = 0;
        const dirent* child = ::readdir(stream);
        if (!child) {
            m_nodes[node].listingFailed = errno != 0;
            break;
        }
        const char* name = child->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
            continue;
        const size_t index = m_nodes.size();
        m_nodes.emplace_back();
        struct stat st
        {
        };
        if (::fstatat(descriptor, name, &st, AT_SYMLINK_NOFOLLOW) != 0) {
            m_nodes[index].statusFailed = true;
            m_nodes[index].end = quint32(index + 1);
            continue;
        }
        Node& added = m_nodes[index];
        added.identity = {quint64(st.st_dev), quint64(st.st_ino)};
        added.blocks = qint64(st.st_blocks);
        added.isDirectory = S_ISDIR(st.st_mode);
        added.isIncomplete = FS::hasIncompleteSuffix(name);
        if (added.isDirectory) {
            const int inner = ::openat(descriptor, name, kOpenFolderFlags);
            if (inner < 0)
                m_nodes[index].openFailed = true;
            else
                recordFolder(index, inner);
        }
        m_nodes[index].end = quint32(m_nodes.size());
    }
    ::closedir(stream);
}

FS::Measurement HomebrewCacheFolderWalk::measure(FS::VisitedSet& visited) const
{
    return measure(0, visited);
}

FS::Measurement HomebrewCacheFolderWalk::measure(size_t index, FS::VisitedSet& visited) const
{
    const Node& node = m_nodes[index];
    FS::Measurement result;
    result.isIncomplete = node.isIncomplete;
    if (!visited.insert(node.identity))
        return result; // counted before; a folder met again is not entered again
    result.allocatedSize = std::max<qint64>(0, node.blocks * 512);
    if (!node.isDirectory)
        return result;
    if (node.openFailed) {
        result.hasIssue = true;
        return result;
    }
    for (size_t child = index + 1; child < node.end; child = m_nodes[child].end) {
        if (m_nodes[child].statusFailed) {
            result.hasIssue = true;
            continue;
        }
        const FS::Measurement inner = measure(child, visited);
        if (__builtin_add_overflow(result.allocatedSize, inner.allocatedSize, &result.allocatedSize))
            qFatal("Homebrew cache size overflow");
        result.isIncomplete = result.isIncomplete || inner.isIncomplete;
        result.hasIssue = result.hasIssue || inner.hasIssue;
    }
    result.hasIssue = result.hasIssue || node.listingFailed;
    return result;
}

} // namespace quillbay
