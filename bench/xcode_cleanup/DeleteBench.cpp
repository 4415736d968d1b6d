// xcode_cleanup_delete_bench generate <home> <files>  derived data of about <files> files
// xcode_cleanup_delete_bench delete <home>            selects all derived data and deletes
//                                                    it through the guard; prints the time
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "platform/UserPaths.h"
#include "testsupport/DeveloperTreeBuilder.h"
#include "xcode_cleanup/XcodeFileManager.h"

using namespace quillbay;
using Builder = quillbay::test::DeveloperTreeBuilder;

namespace {

int generate(const QString& home, int files)
{
    Builder builder(UserPaths::forHome(home).developerFolder());
    const int projects = 20;
    int made = 0;
    for (int i = 0; i < projects; ++i) {
        const QString folder = builder.addDerivedData(QStringLiteral("Project_%1").arg(i),
                                                      QStringLiteral("/src/Project%1.xcodeproj").arg(i), 65536);
        made += 2 + Builder::fillBuildProducts(folder, std::max(1, (files - made) / (projects - i) - 2), 7000 + i);
    }
    std::printf("%d files\n", made);
    return 0;
}

int deleteAll(const QString& home)
{
    auto manager = XcodeFileManager::create(UserPaths::forHome(home).developerFolder());
    if (!manager) {
        std::fprintf(stderr, "no usable Developer folder under %s\n", qPrintable(home));
        return 1;
    }
    manager->prepareLocations();
    std::optional<XcodeFileProperties> row = manager->scan(Location::derivedData);
    if (!row)
        return 1;
    row->setSelected(row->id, true);
    QElapsedTimer timer;
    timer.start();
    const XcodeDeletionResult result = manager->deleteItems({*row});
    const qint64 ms = timer.elapsed();
    std::fprintf(stderr, "deleted %lld items, %lld failed, %lld bytes\n",
                 static_cast<long long>(result.deletedItemCount), static_cast<long long>(result.failedItemCount),
                 static_cast<long long>(result.reclaimedSize));
    std::printf("%lld\n", static_cast<long long>(ms));
    return result.failedItemCount == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() >= 4 && args[1] == QLatin1String("generate"))
        return generate(args[2], args[3].toInt());
    if (args.size() >= 3 && args[1] == QLatin1String("delete"))
        return deleteAll(args[2]);
    std::fprintf(stderr, "usage: %s generate <home> <files> | delete <home>\n", argv[0]);
    return 2;
}
