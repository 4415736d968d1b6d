// xcode_cleanup_scan_bench generate <home> <files>   builds <home>/Library/Developer
// xcode_cleanup_scan_bench scan <home> [threads]      one full scan; prints seconds and bytes
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "platform/UserPaths.h"
#include "testsupport/DeveloperTreeBuilder.h"
#include "xcode_cleanup/FileMeasure.h"
#include "xcode_cleanup/XcodeFileManager.h"

using namespace quillbay;
using Builder = quillbay::test::DeveloperTreeBuilder;

namespace {

// The mix of a developer machine that builds a handful of projects: most files in derived
// data, big files in device support and archives, a few caches and logs.
int generate(const QString& home, int files)
{
    Builder builder(UserPaths::forHome(home).developerFolder());
    const QStringList devices {QStringLiteral("iPhone16,1 17.2.1 (21C66)"), QStringLiteral("iPhone14,2 18.1 (22B83)"),
                               QStringLiteral("16.2 (20C65) arm64e"),       QStringLiteral("15.1 (19B74) arm64e"),
                               QStringLiteral("iPhone15,4 26.6 (23G71)"),   QStringLiteral("17.2 (21C62)")};
    int made = 0;
    for (int i = 0; i < devices.size(); ++i) {
        const QString folder = builder.addDeviceSupport(QStringLiteral("iOS DeviceSupport"), devices[i], 1 << 20);
        made += 2 + Builder::fillBuildProducts(folder, files / 100, 1000 + i);
    }
    builder.addDeviceSupport(QStringLiteral("watchOS DeviceSupport"), QStringLiteral("Watch7,1 11.2"), 1 << 19);
    for (int i = 0; i < 24; ++i) {
        Builder::Archive archive;
        archive.date
            = QStringLiteral("2024-%1-%2").arg(1 + i % 12, 2, 10, QLatin1Char('0')).arg(1 + i, 2, 10, QLatin1Char('0'));
        archive.bundleFileName = QStringLiteral("App %1.xcarchive").arg(i);
        archive.bundleIdentifier = QStringLiteral("com.example.app%1").arg(i % 3);
        archive.build = QString::number(100 + i);
        archive.format = i % 2 ? Builder::PlistFormat::binary : Builder::PlistFormat::xml;
        archive.payloadBytes = 300000;
        const QString path = builder.addArchive(archive);
        made += 3 + Builder::fillBuildProducts(path + QStringLiteral("/dSYMs"), files / 400, 2000 + i);
    }
    for (int i = 0; i < 20; ++i) {
        builder.addDocumentationCache(QStringLiteral("v%1").arg(i % 2), QStringLiteral("1%1.0").arg(i % 7));
        builder.addDeviceLog(QStringLiteral("Logs 1%1.%2 2024.db").arg(i % 5).arg(i % 3));
        made += 2;
    }
    made += Builder::fillBuildProducts(builder.addPreview(QStringLiteral("Simulator Devices")), files / 50, 3000);
    const int projects = 40;
    for (int i = 0; i < projects && made < files; ++i) {
        const QString folder = builder.addDerivedData(QStringLiteral("Project_%1").arg(i),
                                                      QStringLiteral("/src/Project%1.xcodeproj").arg(i), 65536,
                                                      i % 2 ? Builder::PlistFormat::binary : Builder::PlistFormat::xml);
        const int share = (files - made) / (projects - i);
        made += 2 + Builder::fillBuildProducts(folder, std::max(1, share - 2), 4000 + i);
    }
    std::printf("%d entries\n", made);
    return 0;
}

int scan(const QString& home, int threads)
{
    setDefaultMeasureThreadCount(threads);
    QElapsedTimer timer;
    timer.start();
    const auto manager = XcodeFileManager::create(UserPaths::forHome(home).developerFolder());
    if (!manager) {
        std::fprintf(stderr, "no Developer/Xcode folder under %s\n", qPrintable(home));
        return 1;
    }
    // Where the time goes, location by location, on standard error.
    manager->scanAll({}, [&timer](Location, const XcodeFileProperties& row) {
        std::fprintf(stderr, "%8.3f s  %-22s %lld bytes\n", static_cast<double>(timer.nsecsElapsed()) / 1e9,
                     qPrintable(row.label), static_cast<long long>(row.size.bytesOrZero()));
    });
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    std::printf("%.4f %lld\n", seconds, static_cast<long long>(manager->totalSize()));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 4 && args[1] == QStringLiteral("generate"))
        return generate(args[2], args[3].toInt());
    if (args.size() >= 3 && args[1] == QStringLiteral("scan"))
        return scan(args[2], args.size() > 3 ? args[3].toInt() : 0);
    std::fprintf(stderr, "usage: %s generate <home> <files> | scan <home> [threads]\n", argv[0]);
    return 2;
}
