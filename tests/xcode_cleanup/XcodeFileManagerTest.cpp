#include <QFile>

#include <gtest/gtest.h>
#include <plist/plist.h>
#include <sys/stat.h>

#include "platform/UserPaths.h"
#include "testsupport/DeveloperTreeBuilder.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "xcode_cleanup/XcodeFileManager.h"

using namespace quillbay;
using Builder = quillbay::test::DeveloperTreeBuilder;

namespace {

QByteArray toBinary(const QByteArray& xml)
{
    plist_t root = nullptr;
    plist_from_memory(xml.constData(), static_cast<uint32_t>(xml.size()), &root);
    char* data = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &data, &length);
    QByteArray bytes(data, static_cast<qsizetype>(length));
    free(data);
    plist_free(root);
    return bytes;
}

QStringList labels(const std::optional<std::vector<XcodeFileProperties>>& nodes)
{
    QStringList result;
    if (nodes) {
        for (const auto& node : *nodes)
            result.append(node.label);
    }
    return result;
}

void expectNothingSelected(const XcodeFileProperties& node)
{
    EXPECT_FALSE(node.isSelected) << qPrintable(node.label);
    if (node.children) {
        for (const auto& child : *node.children)
            expectNothingSelected(child);
    }
}

qint64 allocated(const QString& path)
{
    return test::TempTree::allocatedBytes(path);
}

struct Fixture
{
    test::TempTree tree;
    QString developer = UserPaths::forHome(tree.root()).developerFolder();
    Builder builder {developer};
};

} // namespace

TEST(XcodeFileManagerTest, ScansEveryLocationOfARealTree)
{
    Fixture f;
    Builder& b = f.builder;
    // Device support: one OS folder missing (watchOS), duplicates by architecture, two
    // builds of one version.
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"iPhone14,2 17.1 (21B74)"_qs, 20000);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"16.2 (20C65) arm64e"_qs, 10000);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"16.2 (20C65)"_qs, 10000);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"17.1 (21B90)"_qs);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"Not a version"_qs);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"iPhone14,2 17"_qs);
    // An unknown model shows its identifier; spacing runs and words past four pieces are ignored.
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"iPhone99,1 15.0"_qs);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"16.2.1  (20C65)   arm64e"_qs);
    b.addDeviceSupport(u"iOS DeviceSupport"_qs, u"iPad5,1 15.6.1 (19G82) arm64e extra words"_qs);
    b.addDeviceSupport(u"tvOS DeviceSupport"_qs, u"1.0 beta"_qs);
    b.addDeviceSupport(u"macOS DeviceSupport"_qs, u"14.2 (23C64)"_qs);
    b.writeFile(u"Xcode/iOS DeviceSupport/.DS_Store"_qs, 100);
    // Archives: two of one bundle, one of another, one broken, one not in a dated folder.
    Builder::Archive older;
    older.shortVersion = u"1.2"_qs;
    older.build = u"9"_qs;
    const QString olderPath = b.addArchive(older);
    Builder::Archive newer;
    newer.date = u"2024-03-01"_qs;
    newer.bundleFileName = u"App 3-1-24, 9.15 AM.xcarchive"_qs;
    newer.shortVersion = u"1.2"_qs;
    newer.build = u"10"_qs;
    newer.format = Builder::PlistFormat::binary;
    newer.uploadStates = QStringList {u"success"_qs};
    const QString newerPath = b.addArchive(newer);
    Builder::Archive other;
    other.date = u"2023-12-24"_qs;
    other.bundleIdentifier = u"com.example.another"_qs;
    other.uploadStates = QStringList {QString()}; // an upload event without a state failed
    b.addArchive(other);
    b.addArchiveWithInfoPlist(u"2024-01-16"_qs, u"Broken.xcarchive"_qs, "not a plist");
    // Broken archives are left out with their log lines: missing keys, a key of the wrong
    // type, cut XML and binary files, no Info.plist; a bundle without the extension too.
    Builder::Archive noName;
    noName.name.reset();
    Builder::Archive noBuild;
    noBuild.build.reset();
    const QByteArray good = Builder::archiveInfoPlist({});
    QByteArray wrongType = good;
    wrongType.replace("<key>CFBundleVersion</key>\n\t\t<string>45</string>",
                      "<key>CFBundleVersion</key>\n\t\t<integer>45</integer>");
    ASSERT_NE(wrongType, good);
    QByteArray propertiesMoved = good;
    propertiesMoved.replace("<key>ApplicationProperties</key>", "<key>ApplicationPropertiesMoved</key>");
    const std::pair<const char*, QByteArray> broken[] = {
        {"noname.xcarchive", Builder::archiveInfoPlist(noName)},
        {"nobuild.xcarchive", Builder::archiveInfoPlist(noBuild)},
        {"cut.xcarchive", good.left(good.size() / 2)},
        {"cutbinary.xcarchive", toBinary(good).left(40)},
        {"nonstring.xcarchive", wrongType},
        {"noproperties.xcarchive", propertiesMoved},
        {"App.xcarchive.zip", good},
    };
    for (const auto& [name, bytes] : broken)
        b.addArchiveWithInfoPlist(u"2024-02-02"_qs, QString::fromLatin1(name), bytes);
    b.mkdir(u"Xcode/Archives/2024-02-03/empty.xcarchive"_qs);
    b.writeBytes(u"Xcode/Archives/Loose.xcarchive/Info.plist"_qs, Builder::archiveInfoPlist({}));
    // Derived data: sizes decide the order; ModuleCache skipped, no info.plist dropped.
    const QString small = b.addDerivedData(u"Small_App"_qs, u"/src/Small.xcodeproj"_qs, 4096);
    const QString big
        = b.addDerivedData(u"Big-App_Two"_qs, u"/src/Big.xcworkspace"_qs, 400000, Builder::PlistFormat::binary);
    b.writeFile(u"Xcode/DerivedData/ModuleCache/x.pcm"_qs, 50000);
    b.writeFile(u"Xcode/DerivedData/modulecache/info.plist"_qs, 10);
    b.writeBytes(u"Xcode/DerivedData/modulecache/info.plist"_qs,
                 Builder::derivedDataInfoPlist(u"/src/Lower.xcodeproj"_qs, Builder::PlistFormat::xml));
    b.writeFile(u"Xcode/DerivedData/NoInfo-abcdefghijklmnopqrstuvwxyzab/Build/x"_qs, 5000);
    // Documentation cache: one version in two formats, one bad name.
    b.addDocumentationCache(u"v1"_qs, u"15.0"_qs);
    b.addDocumentationCache(u"v2"_qs, u"15.0"_qs);
    b.addDocumentationCache(u"v2"_qs, u"16.1"_qs);
    b.addDocumentationCache(u"v2"_qs, u"latest"_qs);
    // Logs: grouped by the first version in the name.
    b.addDeviceLog(u"Logs 17.2 2024.db"_qs);
    b.addDeviceLog(u"Crash 17.2.db"_qs);
    b.addDeviceLog(u"Logs 16.0 x.db"_qs);
    b.addDeviceLog(u"Logs without version.db"_qs);
    // Previews.
    const QString preview = b.addPreview(u"Simulator Devices"_qs, 30000);
    b.writeFile(u"Xcode/UserData/Previews/.hidden"_qs, 100);

    const auto manager = XcodeFileManager::create(f.developer);
    ASSERT_TRUE(manager);
    test::LogCapture log;
    std::vector<Location> reported;
    const auto rows = manager->scanAll({}, [&](Location l, const XcodeFileProperties&) { reported.push_back(l); });
    EXPECT_EQ(reported, std::vector<Location>(allLocations.begin(), allLocations.end()));
    ASSERT_EQ(rows.size(), 6u);

    const auto& devices = rows[0];
    EXPECT_EQ(labels(devices.children),
              (QStringList {u"iOS"_qs, u"watchOS"_qs, u"tvOS"_qs, u"visionOS"_qs, u"macOS"_qs}));
    EXPECT_EQ(
        labels((*devices.children)[0].children),
        (QStringList {u"iOS 17.1 (21B90)"_qs, u"iOS 17.1 (21B74) (iPhone 13 Pro)"_qs, u"iOS 16.2.1 (20C65)"_qs,
                      u"iOS 16.2 (20C65)"_qs, u"iOS 15.6.1 (19G82) (iPad mini 4)"_qs, u"iOS 15.0  (iPhone99,1)"_qs}))
        << "newest first; builds order by what follows \"(\"; architecture duplicates go";
    EXPECT_TRUE(log.contains(u"XcodeFileManager: 无设备支持版本: "_qs));
    EXPECT_FALSE((*devices.children)[1].children) << "a missing folder leaves the row unfilled";
    EXPECT_TRUE(log.contains(u"XcodeFileManager: 无法检查 '"_qs));
    EXPECT_EQ(labels((*devices.children)[2].children), QStringList {u"tvOS 1.0 beta"_qs});
    EXPECT_EQ(labels((*devices.children)[4].children), QStringList {u"macOS 14.2 (23C64)"_qs});

    const auto& archives = rows[1];
    ASSERT_EQ(labels(archives.children), (QStringList {u"com.example.another"_qs, u"com.example.app"_qs}));
    for (const char* line :
         {"无法从存档中读取到项目名称: ", "无法从存档中获取包构建: ", "无法打开存档中的 Info.plist 文件: ",
          "无法从存档的 Info.plist 文件中获取 Ap\u200b\u200bplicationProperties: "})
        EXPECT_TRUE(log.contains(u"XcodeFileManager: "_qs + QString::fromUtf8(line))) << line;
    const auto& app = (*archives.children)[1];
    EXPECT_TRUE(app.paths.isEmpty());
    EXPECT_EQ(labels(app.children), (QStringList {u"1.2 (10)"_qs, u"1.2 (9)"_qs})) << "number-aware, newest first";
    EXPECT_EQ((*app.children)[0].paths, QStringList {newerPath});
    const struct
    {
        const XcodeFileProperties& row;
        SubmissionStatus status;
        std::optional<Icon> icon;
    } statuses[] = {{(*app.children)[0], SubmissionStatus::success, Icon::system(u"checkmark"_qs)},
                    {(*app.children)[1], SubmissionStatus::undefined, std::nullopt},
                    {(*(*archives.children)[0].children)[0], SubmissionStatus::failure, Icon::system(u"xmark"_qs)}};
    for (const auto& st : statuses) {
        SCOPED_TRACE(qPrintable(st.row.label));
        EXPECT_EQ(st.row.as<ArchiveFile>()->submissionStatus, st.status);
        EXPECT_EQ(st.row.icon, st.icon);
    }
    EXPECT_EQ((*app.children)[1].size.bytesOrZero(),
              allocated(olderPath + u"/Info.plist"_qs) + allocated(olderPath + u"/Products/Applications/App.app/App"_qs)
                  + allocated(olderPath + u"/dSYMs/App.app.dSYM/Contents/Resources/DWARF/App"_qs));

    const auto& derived = rows[2];
    // "modulecache" is not the skipped name; having no hash piece, its project name is empty.
    EXPECT_EQ(labels(derived.children), (QStringList {u"Big-App Two"_qs, u"Small App"_qs, QString()}));
    EXPECT_TRUE((*derived.children)[2].paths.first().endsWith(u"/modulecache"_qs));
    const auto& bigRow = (*derived.children)[0];
    EXPECT_EQ(bigRow.paths, QStringList {big});
    EXPECT_EQ(bigRow.info, u"/src/Big.xcworkspace"_qs);
    EXPECT_EQ((*derived.children)[1].paths, QStringList {small});

    const auto& docs = rows[3];
    ASSERT_EQ(labels(docs.children), (QStringList {u"Cache from Xcode 16.1"_qs, u"Cache from Xcode 15.0"_qs}));
    EXPECT_EQ((*docs.children)[1].paths.size(), 2);
    EXPECT_TRUE(log.contains(u"XcodeFileManager: 搜索文档缓存时 Xcode 版本无效: "_qs));

    const auto& logs = rows[4];
    ASSERT_EQ(labels(logs.children), (QStringList {u"Logs from Xcode 17.2"_qs, u"Logs from Xcode 16.0"_qs}));
    EXPECT_EQ((*logs.children)[0].paths.size(), 2);
    EXPECT_TRUE(log.contains(u"XcodeFileManager: 日志条目错误？未找到版本（路径: "_qs));

    const auto& previews = rows[5];
    EXPECT_TRUE(previews.is<UserDataPreviewFile>());
    EXPECT_EQ(previews.paths, QStringList {preview});
    EXPECT_FALSE(previews.children);

    // Every size is known and each parent holds exactly its children.
    qint64 total = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(qPrintable(row.label));
        ASSERT_TRUE(row.size.isKnown());
        qint64 children = 0;
        if (row.children) {
            for (const auto& child : *row.children)
                children += child.size.bytesOrZero();
        }
        if (!row.paths.isEmpty())
            children += allocated(preview + u"/Simulator Devices/device_set.plist"_qs);
        EXPECT_EQ(row.size.bytesOrZero(), children);
        expectNothingSelected(row);
        total += row.size.bytesOrZero();
    }
    EXPECT_EQ(manager->totalSize(), total);
    EXPECT_GT((*derived.children)[0].size, (*derived.children)[1].size);

    // A stopped scan reports nothing and leaves every size unknown.
    std::stop_source stop;
    stop.request_stop();
    for (const auto& row : manager->scanAll(
             stop.get_token(), [](Location, const XcodeFileProperties&) { ADD_FAILURE() << "reported after stop"; }))
        EXPECT_FALSE(row.size.isKnown());
    EXPECT_FALSE(XcodeFileManager::create(f.tree.path(u"missing"_qs))) << "no Developer folder, no manager";
}

TEST(XcodeFileManagerTest, AnUnreadableFolderLeavesItsRowUnfilledAndItsSizeZero)
{
    if (!test::ReducedPrivileges::available())
        GTEST_SKIP() << "running as root without a way to drop privileges, so no folder is unreadable";
    Fixture f;
    ::chmod(QFile::encodeName(f.tree.root()).constData(), 0755);
    f.builder.addDeviceSupport(u"iOS DeviceSupport"_qs, u"17.1 (21B74)"_qs);
    f.builder.addDeviceSupport(u"tvOS DeviceSupport"_qs, u"17.1 (21K69)"_qs);
    const QString derived = f.builder.addDerivedData(u"Locked"_qs, u"/src/L.xcodeproj"_qs, 8192);
    f.tree.chmod(u"Library/Developer/Xcode/iOS DeviceSupport"_qs, 0);
    f.tree.chmod(derived.mid(f.tree.root().size() + 1) + u"/Build/Products"_qs, 0);

    const auto manager = XcodeFileManager::create(f.developer);
    ASSERT_TRUE(manager);
    test::ReducedPrivileges unprivileged;
    manager->prepareLocations();
    const auto devices = manager->scan(Location::deviceSupport);
    ASSERT_TRUE(devices);
    EXPECT_FALSE((*devices->children)[0].children);
    EXPECT_EQ(labels((*devices->children)[2].children), QStringList {u"tvOS 17.1 (21K69)"_qs});
    const auto derivedRow = manager->scan(Location::derivedData);
    ASSERT_TRUE(derivedRow);
    ASSERT_EQ(labels(derivedRow->children), QStringList {u"Locked"_qs});
    EXPECT_EQ((*derivedRow->children)[0].size, Size::value(0)) << "one unreadable corner makes the folder count 0";
}
