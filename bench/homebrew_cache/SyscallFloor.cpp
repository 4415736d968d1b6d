// The least any scan of a Homebrew cache must ask of the kernel: list the cache folder,
// downloads/ and Cask/, lstat every item and read every link, split over N threads and
// nothing else done with the answers. Its time is the floor under the scan's wall time.
//
//   homebrew_cache_syscall_floor <cache folder> [threads] [rounds]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Item
{
    int folder;
    std::string name;
};

void list(const std::string& path, std::vector<int>& folders, std::vector<Item>& items)
{
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    folders.push_back(folder);
    DIR* stream = ::fdopendir(::dup(folder));
    if (!stream)
        return;
    while (const dirent* entry = ::readdir(stream)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            items.push_back({folder, name});
    }
    ::closedir(stream);
}

long long examine(const std::vector<Item>& items, size_t first, size_t step)
{
    long long blocks = 0;
    char text[4096];
    for (size_t i = first; i < items.size(); i += step) {
        struct stat status;
        if (::fstatat(items[i].folder, items[i].name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        blocks += status.st_blocks;
        if (S_ISLNK(status.st_mode))
            static_cast<void>(::readlinkat(items[i].folder, items[i].name.c_str(), text, sizeof text));
    }
    return blocks;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <cache folder> [threads] [rounds]\n", argv[0]);
        return 2;
    }
    const std::string root = argv[1];
    const size_t threads = argc > 2 ? size_t(std::max(1, std::atoi(argv[2]))) : 2;
    const int rounds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 15;
    std::vector<double> times;
    size_t count = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        std::vector<int> folders;
        std::vector<Item> items;
        list(root, folders, items);
        list(root + "/downloads", folders, items);
        list(root + "/Cask", folders, items);
        std::vector<std::jthread> helpers;
        for (size_t t = 1; t < threads; ++t)
            helpers.emplace_back([&items, t, threads] { examine(items, t, threads); });
        examine(items, 0, threads);
        helpers.clear();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        for (const int folder : folders)
            ::close(folder);
        count = items.size();
    }
    std::sort(times.begin(), times.end());
    std::printf("%zu items, %zu threads: median %.2f ms, best %.2f ms\n", count, threads, times[times.size() / 2],
                times.front());
    return 0;
}
