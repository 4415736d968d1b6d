#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <stop_token>
#include <vector>

namespace quillbay {

// a + b for byte counts; an overflow is a programming error and stops the program.
qint64 checkedByteSum(qint64 a, qint64 b);

// Threads a directory measure may use, the calling one included: twelve per core (at
// most 32), since with a cold cache most of them wait on directory reads. On two cores,
// 24 threads walk a cold tree about 8% faster than 8 and cost nothing when it is warm;
// past 32 the switching costs more than the extra reads in flight gain.
int defaultMeasureThreadCount();
// Overrides the default for the process (0 restores it); for benchmarks that compare counts.
void setDefaultMeasureThreadCount(int threads);

// The allocated bytes (st_blocks * 512) of every regular file below `path`, each link to
// a file counted where it stands; folders, symbolic links and other kinds count nothing,
// and links are never followed, the start included. Fails (absent) when `path` is not a
// folder, when any folder below cannot be listed or any entry cannot be examined, and when
// `stop` is requested: one unreadable corner makes the whole figure unknown rather than
// quietly smaller. The total does not depend on the thread count or on timing.
std::optional<qint64> measureDirectory(const QString& path, std::stop_token stop = {}, int threadCount = 0);
// The same for several folders in one walk, answer i for paths[i]: the folders share the
// threads, so many small folders cost one start-up and the tail of one is the others' turn.
std::vector<std::optional<qint64>>
measureDirectories(const QStringList& paths, std::stop_token stop = {}, int threadCount = 0);

// The allocated bytes of the item itself when it is a regular file, otherwise 0 (a
// folder, a link); absent when it cannot be examined.
std::optional<qint64> measureSingleItem(const QString& path);

} // namespace quillbay
