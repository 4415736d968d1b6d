// Scans a generated Homebrew cache of 5,000 packages and compares the time with
// `du -s --block-size=1` on the same folder, in one run, alternating, warm caches.
// Usage: homebrew_cache_scan_bench [packages] [rounds] [existing cache folder to reuse]
//        [file to write the last scan's entries to, for comparing two builds]
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "homebrew_cache/HomebrewCacheScanner.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

void makeFile(const QString& path, qint64 bytes)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || (bytes > 0 && ::posix_fallocate(fd, 0, bytes) != 0))
        qFatal("cannot create %s", qPrintable(path));
    ::close(fd);
}

void makeLink(const QString& path, const QString& target)
{
    if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()) != 0)
        qFatal("cannot link %s", qPrintable(path));
}

// The shape of a real cache: formula links at the top level into downloads/ (a bottle,
// for every fourth also its manifest), cask links in Cask/, a few unclaimed downloads and
// hard links, and the api/ and bootsnap/ folders.
void generateCache(const QString& root, int packages)
{
    QDir().mkpath(root + QStringLiteral("/downloads"));
    QDir().mkpath(root + QStringLiteral("/Cask"));
    const int casks = packages / 5;
    for (int i = 0; i < packages; ++i) {
        const QString hash = QStringLiteral("%1").arg(quint64(i) * 2654435761ULL, 64, 16, QLatin1Char('0'));
        const qint64 size = 4096 * (1 + (i * 7919) % 16);
        if (i < casks) {
            const QString name = QStringLiteral("cask%1--%2.%3.dmg").arg(i).arg(1 + i % 9).arg(i % 13);
            makeFile(root + QStringLiteral("/downloads/") + hash + QStringLiteral("--App.dmg"), size);
            makeLink(root + QStringLiteral("/Cask/") + name,
                     QStringLiteral("../downloads/") + hash + QStringLiteral("--App.dmg"));
            continue;
        }
        const QString version = QStringLiteral("%1.%2.%3").arg(i % 7).arg(i % 11).arg(i % 5);
        const QString bottle = QStringLiteral("formula%1--%2.arm64_sonoma.bottle.tar.gz").arg(i).arg(version);
        makeFile(root + QStringLiteral("/downloads/") + hash + QStringLiteral("--") + bottle, size);
        makeLink(root + QLatin1Char('/') + bottle, QStringLiteral("downloads/") + hash + QStringLiteral("--") + bottle);
        if (i % 4 == 0) {
            const QString manifest
                = QStringLiteral("formula%1_bottle_manifest--%2.bottle_manifest.json").arg(i).arg(version);
            makeFile(root + QStringLiteral("/downloads/m") + hash + QStringLiteral("--manifest.json"), 4096);
            makeLink(root + QLatin1Char('/') + manifest,
                     root + QStringLiteral("/downloads/m") + hash + QStringLiteral("--manifest.json"));
        }
    }
    for (int i = 0; i < 50; ++i)
        makeFile(root + QStringLiteral("/downloads/stray%1--old.tar.gz").arg(i), 8192);
    const QStringList downloads = QDir(root + QStringLiteral("/downloads")).entryList(QDir::Files, QDir::Name);
    // Hard links to existing downloads: a second name that must not count twice.
    for (int i = 0; i < 20 && i < downloads.size(); ++i) {
        const QString source = root + QStringLiteral("/downloads/") + downloads.at(i);
        const QString copy = root + QStringLiteral("/downloads/hard%1").arg(i);
        if (::link(QFile::encodeName(source).constData(), QFile::encodeName(copy).constData()) != 0)
            qFatal("cannot hard-link");
    }
    QDir().mkpath(root + QStringLiteral("/api/cask"));
    makeFile(root + QStringLiteral("/api/formula.jws.json"), 30 * 1024 * 1024);
    makeFile(root + QStringLiteral("/api/cask.jws.json"), 12 * 1024 * 1024);
    for (int i = 0; i < 200; ++i)
        makeFile(root + QStringLiteral("/api/cask/c%1.json").arg(i), 4096);
    for (int d = 0; d < 20; ++d) {
        const QString folder = root + QStringLiteral("/bootsnap/%1/compile-cache").arg(d);
        QDir().mkpath(folder);
        for (int i = 0; i < 25; ++i)
            makeFile(folder + QStringLiteral("/%1").arg(i), 4096);
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double cpuMs(const timeval& from, const timeval& to)
{
    return double(to.tv_sec - from.tv_sec) * 1e3 + double(to.tv_usec - from.tv_usec) / 1e3;
}

qint64 blocksOf(const QString& path)
{
    struct stat st
    {
    };
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 ? qint64(st.st_blocks) * 512 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int packages = argc > 1 ? std::atoi(argv[1]) : 5000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
    QTemporaryDir temporary(QDir::tempPath() + QStringLiteral("/cache-bench-XXXXXX"));
    QString root = temporary.path() + QStringLiteral("/Homebrew");
    if (argc > 3) {
        root = QString::fromLocal8Bit(argv[3]);
        if (!QFileInfo::exists(root))
            generateCache(root, packages);
    } else {
        generateCache(root, packages);
    }

    const HomebrewCacheScanner scanner(root, QStringLiteral("~/Library/Caches/Homebrew"));
    std::vector<double> scanTimes;
    std::vector<double> duTimes;
    std::vector<double> scanUser; // CPU time of all the scan's threads
    std::vector<double> scanSystem;
    std::vector<double> scanFaults; // minor page faults, mostly fresh heap memory
    std::vector<double> duCpu; // user + system of the du process
    qint64 scanTotal = 0;
    qint64 duTotal = 0;
    size_t entryCount = 0;
    // One warm-up of each, then alternate so that both see the same cache state.
    for (int round = -1; round < rounds; ++round) {
        QElapsedTimer timer;
        rusage before {};
        ::getrusage(RUSAGE_SELF, &before);
        timer.start();
        const HomebrewCacheScanResult result = scanner.scan(root);
        const double scanMs = double(timer.nsecsElapsed()) / 1e6;
        rusage after {};
        ::getrusage(RUSAGE_SELF, &after);
        if (result.failure)
            qFatal("scan failed: %s", qPrintable(result.failure->description));
        scanTotal = 0;
        for (const HomebrewCacheEntry& entry : result.entries)
            scanTotal += entry.allocatedSize.value_or(0);
        entryCount = result.entries.size();

        QProcess du;
        rusage childrenBefore {};
        ::getrusage(RUSAGE_CHILDREN, &childrenBefore);
        timer.restart();
        du.start(QStringLiteral("du"), {QStringLiteral("-s"), QStringLiteral("--block-size=1"), root});
        du.waitForFinished(-1);
        const double duMs = double(timer.nsecsElapsed()) / 1e6;
        rusage childrenAfter {};
        ::getrusage(RUSAGE_CHILDREN, &childrenAfter);
        duTotal = QString::fromLocal8Bit(du.readAllStandardOutput()).section(QLatin1Char('\t'), 0, 0).toLongLong();
        if (round >= 0) {
            scanUser.push_back(cpuMs(before.ru_utime, after.ru_utime));
            scanSystem.push_back(cpuMs(before.ru_stime, after.ru_stime));
            scanFaults.push_back(double(after.ru_minflt - before.ru_minflt));
            duCpu.push_back(cpuMs(childrenBefore.ru_utime, childrenAfter.ru_utime)
                            + cpuMs(childrenBefore.ru_stime, childrenAfter.ru_stime));
            scanTimes.push_back(scanMs);
            duTimes.push_back(duMs);
        }
    }
    // du also counts the cache folder and the two containers, which belong to no entry.
    const qint64 containers
        = blocksOf(root) + blocksOf(root + QStringLiteral("/downloads")) + blocksOf(root + QStringLiteral("/Cask"));
    if (argc > 4) {
        QFile dump(QString::fromLocal8Bit(argv[4]));
        if (!dump.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write %s", argv[4]);
        for (const HomebrewCacheEntry& entry : scanner.scan(root).entries) {
            const QString line = QStringList {entry.id,
                                              rawValue(entry.category),
                                              entry.packageIdentifier.value_or(u"-"_s),
                                              entry.version.value_or(u"-"_s),
                                              entry.displayName,
                                              entry.allocatedSize ? QString::number(*entry.allocatedSize) : u"-"_s,
                                              entry.isIncomplete ? u"incomplete"_s : u"-"_s,
                                              entry.hasIssue ? u"issue"_s : u"-"_s,
                                              entry.paths.join(u'|')}
                                     .join(u'\t');
            dump.write(line.toUtf8() + '\n');
        }
    }
    const double scanMedian = median(scanTimes);
    const double duMedian = median(duTimes);
    std::printf("packages %d, entries %zu, rounds %d\n", packages, entryCount, rounds);
    std::printf("scan total %lld + containers %lld = %lld bytes; du total %lld bytes: %s\n", qint64(scanTotal),
                qint64(containers), qint64(scanTotal + containers), qint64(duTotal),
                scanTotal + containers == duTotal ? "equal" : "DIFFERENT");
    std::printf("scan median %.2f ms, du median %.2f ms, ratio %.2fx\n", scanMedian, duMedian, scanMedian / duMedian);
    std::printf("scan CPU median: user %.2f ms, system %.2f ms, %.0f page faults; du CPU median %.2f ms\n",
                median(scanUser), median(scanSystem), median(scanFaults), median(duCpu));
    return scanTotal + containers == duTotal ? 0 : 1;
}
