#include "xcode_cleanup/FileMeasure.h"

#include <QFile>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbay {

qint64 checkedByteSum(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        qFatal("byte count overflow");
    return sum;
}

namespace {
std::atomic<int> measureThreadOverride {0};
}

void setDefaultMeasureThreadCount(int threads)
{
    measureThreadOverride = std::max(0, threads);
}

int defaultMeasureThreadCount()
{
    if (const int configured = measureThreadOverride.load())
        return configured;
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    return static_cast<int>(std::clamp(cores * 12, 4u, 32u));
}

namespace {

qint64 allocatedBytes(const struct stat& st)
{
    return static_cast<qint64>(st.st_blocks) * 512;
}

// An open folder whose descriptor children are opened relative to. Kept alive by the
// pending work that still needs it, so the number of open folders stays near the depth
// of the walk times the thread count.
struct OpenFolder
{
    DIR* dir = nullptr;
    explicit OpenFolder(DIR* d)
        : dir(d)
    {
    }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder() { closedir(dir); }
    int fd() const { return dirfd(dir); }
};

struct PendingFolder
{
    std::shared_ptr<const OpenFolder> parent; // null: `name` is a path from the working folder
    std::string name;
    size_t root; // which of the measured folders this one counts for
};

// One measure of one or more folders: a shared stack of folders still to list. Workers
// take the newest folder (depth first, which bounds the open descriptors), list it, stat
// its files relative to its descriptor and push its sub-folders. The mutex guards only the
// stack and the totals, taken once per folder; the per-file work runs outside it. Helpers
// are started only when work piles up, so small measures stay on the calling thread.
// Several folders share one walk so that the last deep branch of one never leaves the
// other threads idle, which is where a cold walk of many small folders loses its time.
class ParallelWalk
{
public:
    ParallelWalk(std::stop_token stop, int threadCount)
        : m_stop(std::move(stop))
        , m_maxHelpers(std::max(0, threadCount - 1))
    {
    }

    std::vector<std::optional<qint64>> run(const std::vector<std::string>& roots)
    {
        m_totals.assign(roots.size(), 0);
        m_failed.assign(roots.size(), false);
        // Pushed in reverse so that the first folder is walked first.
        for (size_t i = roots.size(); i-- > 0;) {
            if (roots[i].empty())
                m_failed[i] = true;
            else
                m_stack.push_back({nullptr, roots[i], i});
        }
        work();
        for (std::thread& helper : m_helpers)
            helper.join();
        std::vector<std::optional<qint64>> results(roots.size());
        const bool stopped = m_stop.stop_requested();
        for (size_t i = 0; i < roots.size(); ++i) {
            if (!stopped && !m_failed[i])
                results[i] = m_totals[i];
        }
        return results;
    }

private:
    void work()
    {
        std::vector<PendingFolder> found;
        std::unique_lock lock(m_mutex);
        while (true) {
            m_changed.wait(lock, [this] { return !m_stack.empty() || m_active == 0; });
            if (m_stack.empty() && m_active == 0)
                break;
            PendingFolder next = std::move(m_stack.back());
            m_stack.pop_back();
            if (m_failed[next.root])
                continue; // one unreadable corner already made this folder's figure unknown
            ++m_active;
            lock.unlock();

            found.clear();
            qint64 sum = 0;
            const bool ok = !m_stop.stop_requested() && listFolder(next, found, sum);
            next.parent.reset();

            lock.lock();
            --m_active;
            if (ok) {
                m_totals[next.root] = checkedByteSum(m_totals[next.root], sum);
                for (PendingFolder& folder : found)
                    m_stack.push_back(std::move(folder));
            } else {
                m_failed[next.root] = true;
            }
            if (m_stack.size() > 1 && static_cast<int>(m_helpers.size()) < m_maxHelpers)
                m_helpers.emplace_back([this] { work(); });
            if (m_stack.empty() && m_active == 0)
                m_changed.notify_all();
            else if (!found.empty())
                m_changed.notify_one();
        }
        m_changed.notify_all();
    }

    // Lists one folder; false on any failure, which fails the measure of its root.
    static bool listFolder(const PendingFolder& folder, std::vector<PendingFolder>& found, qint64& sum)
    {
        const int parentFd = folder.parent ? folder.parent->fd() : AT_FDCWD;
        const int fd = openat(parentFd, folder.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            return false;
        DIR* dir = fdopendir(fd);
        if (!dir) {
            close(fd);
            return false;
        }
        auto open = std::make_shared<const OpenFolder>(dir);
        while (true) {
            errno = 0;
            const dirent* entry = readdir(dir);
            if (!entry)
                return errno == 0;
            const char* name = entry->d_name;
            if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                continue;
            unsigned char type = entry->d_type;
            struct stat st;
            if (type == DT_REG || type == DT_UNKNOWN) {
                if (fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    return false;
                if (S_ISREG(st.st_mode)) {
                    sum = checkedByteSum(sum, allocatedBytes(st));
                    continue;
                }
                type = S_ISDIR(st.st_mode) ? DT_DIR : DT_UNKNOWN;
            }
            if (type == DT_DIR)
                found.push_back({open, name, folder.root});
        }
    }

    std::stop_token m_stop;
    const int m_maxHelpers;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<PendingFolder> m_stack;
    std::vector<std::thread> m_helpers;
    int m_active = 0;
    std::vector<qint64> m_totals;
    std::vector<bool> m_failed;
};

} // namespace

std::vector<std::optional<qint64>> measureDirectories(const QStringList& paths, std::stop_token stop, int threadCount)
{
    std::vector<std::string> roots;
    roots.reserve(size_t(paths.size()));
    for (const QString& path : paths)
        roots.push_back(QFile::encodeName(path).toStdString());
    ParallelWalk walk(std::move(stop), threadCount > 0 ? threadCount : defaultMeasureThreadCount());
    return walk.run(roots);
}

std::optional<qint64> measureDirectory(const QString& path, std::stop_token stop, int threadCount)
{
    return measureDirectories({path}, std::move(stop), threadCount).front();
}

std::optional<qint64> measureSingleItem(const QString& path)
{
    struct stat st;
    if (path.isEmpty() || lstat(QFile::encodeName(path).constData(), &st) != 0)
        return std::nullopt;
    return S_ISREG(st.st_mode) ? allocatedBytes(st) : 0;
}

} // namespace quillbay
