#pragma once

#include <QtGlobal>
#include <vector>

#include "homebrew_cache/HomebrewCacheFileSystem.h"

namespace quillbay {

// A folder's whole subtree as one walk saw it, taken on any thread and measured later
// against the scan's visited set exactly as a walk at that moment would have measured
// it: the same items in the same order, a folder met again not entered, and the same
// failures. Lets the scan's helper thread do a folder's system calls while the order of
// measuring stays the scan's.
class HomebrewCacheFolderWalk
{
public:
    // Walks the folder `name` of the open folder `parentDescriptor`, whose status is known.
    static HomebrewCacheFolderWalk
    record(int parentDescriptor, const char* name, const HomebrewCacheFileSystem::ItemStatus& status);

    HomebrewCacheFileSystem::Measurement measure(HomebrewCacheFileSystem::VisitedSet& visited) const;

private:
    struct Node
    {
        HomebrewCacheFileSystem::FileIdentity identity;
        qint64 blocks = 0;
        quint32 end = 0; // one past the last node of its subtree
        bool isDirectory = false;
        bool isIncomplete = false;
        bool statusFailed = false; // the item could not be examined
        bool openFailed = false; // a folder that could not be opened
        bool listingFailed = false; // a folder whose listing broke off
    };

    void recordFolder(size_t node, int folder);
    HomebrewCacheFileSystem::Measurement measure(size_t node, HomebrewCacheFileSystem::VisitedSet& visited) const;

    std::vector<Node> m_nodes; // in walk order, each folder before what it holds
};

} // namespace quillbay
