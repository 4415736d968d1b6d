#include <QDir>
#include <QFile>
#include <QTextStream>

#include <gtest/gtest.h>

#include "QtPrinting.h"
#include "testsupport/DeveloperTreeBuilder.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "xcode_cleanup/DeviceNames.h"
#include "xcode_cleanup/DeviceSupportReader.h"

using namespace quillbay;

namespace {

std::optional<XcodeFileProperties> readName(test::TempTree& tree, const QString& name, const QString& os = u"iOS"_qs)
{
    return readDeviceSupport(tree.mkdir(QStringLiteral("ds/") + name), os);
}

QStringList nonCommentLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList lines;
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (!line.trimmed().isEmpty() && !line.startsWith(QLatin1Char('#')))
            lines.append(line);
    }
    return lines;
}

} // namespace

TEST(DeviceSupportTest, EveryNameFormReadsIntoItsParts)
{
    test::TempTree tree;
    struct Case
    {
        const char* name;
        const char* os;
        const char* label;
        std::optional<QString> device;
        const char* version;
        std::optional<QString> build;
        std::optional<QString> architecture;
    };
    const Case cases[] = {
        {"17.1", "iOS", "iOS 17.1 ", std::nullopt, "17.1", std::nullopt, std::nullopt},
        {"17.1 (21B74) arm64e", "iOS", "iOS 17.1 (21B74)", std::nullopt, "17.1", u"(21B74)"_qs, u"arm64e"_qs},
        {"iPhone14,2 17.1", "iOS", "iOS 17.1  (iPhone 13 Pro)", u"iPhone14,2"_qs, "17.1", std::nullopt, std::nullopt},
        {"iPhone14,2 17.1 (21B74) arm64e", "iOS", "iOS 17.1 (21B74) (iPhone 13 Pro)", u"iPhone14,2"_qs, "17.1",
         u"(21B74)"_qs, u"arm64e"_qs},
        {"Watch7,1 11.2", "watchOS", "watchOS 11.2  (Apple Watch Series 9)", u"Watch7,1"_qs, "11.2", std::nullopt,
         std::nullopt},
        {"iPhone99,1 17.1", "iOS", "iOS 17.1  (iPhone99,1)", u"iPhone99,1"_qs, "17.1", std::nullopt, std::nullopt},
        {"16.2.1  (20C65)   arm64e", "iOS", "iOS 16.2.1 (20C65)", std::nullopt, "16.2.1", u"(20C65)"_qs, u"arm64e"_qs},
        // Past four splits the rest stays in a fifth piece that nothing reads.
        {"iPad5,1 15.6.1 (19G82) arm64e extra words", "iOS", "iOS 15.6.1 (19G82) (iPad mini 4)", u"iPad5,1"_qs,
         "15.6.1", u"(19G82)"_qs, u"arm64e"_qs},
        {"1.0 beta", "tvOS", "tvOS 1.0 beta", std::nullopt, "1.0", u"beta"_qs, std::nullopt},
        {"17.1", "Unknown", " 17.1 ", std::nullopt, "17.1", std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto item = readName(tree, QString::fromUtf8(c.name), QString::fromLatin1(c.os));
        ASSERT_TRUE(item);
        const DeviceSupportFile* file = item->as<DeviceSupportFile>();
        ASSERT_TRUE(file);
        EXPECT_EQ(item->label, QString::fromUtf8(c.label));
        EXPECT_EQ(file->device, c.device);
        EXPECT_EQ(file->version.description(), QString::fromLatin1(c.version));
        EXPECT_EQ(file->build ? std::optional(file->build->textual) : std::nullopt, c.build);
        EXPECT_EQ(file->architecture, c.architecture);
        EXPECT_EQ(osTypeName(file->osType),
                  QString::fromLatin1(c.os) == u"Unknown"_qs ? QString() : QString::fromLatin1(c.os));
        EXPECT_EQ(item->paths, QStringList {file->location});
        EXPECT_TRUE(item->tooltip.startsWith(item->label + QLatin1Char(' ')));
    }
}

TEST(DeviceSupportTest, NamesWithoutAVersionAreLeftOutWithALogLine)
{
    test::TempTree tree;
    for (const char* name : {"Unknown name", "iPhone14,2", "17", "iPhone14,2 17"}) {
        SCOPED_TRACE(name);
        test::LogCapture log;
        EXPECT_FALSE(readName(tree, QString::fromLatin1(name)));
        EXPECT_TRUE(log.contains(u"XcodeFileManager: 无设备支持版本: "_qs));
    }
}

TEST(DeviceSupportTest, SortsNewestFirstAndDropsArchitectureDuplicates)
{
    test::TempTree tree;
    std::vector<XcodeFileProperties> files;
    for (const char* name :
         {"16.4 (20E247) arm64e", "17.1 (21B74) arm64e", "iPhone14,2 17.1 (21B74)", "17.1 (21B74)", "17.1 (21B90)",
          "17.2 (21C62) arm64e", "16.4 (20E247)", "iPhone14,2 17.1 (21B74) arm64e", "iPhone15,2 17.1 (21B74) arm64e"}) {
        auto item = readName(tree, QString::fromLatin1(name));
        ASSERT_TRUE(item);
        files.push_back(*item);
    }
    QStringList order;
    for (const auto& item : sortedDeviceSupportFiles(files))
        order.append(QFileInfo(item.paths.first()).fileName());
    // Builds in parentheses order by what follows "(": (21B90) before (21B74). Items
    // that compare equal keep their input order.
    const QStringList expected {u"17.2 (21C62) arm64e"_qs,
                                u"17.1 (21B90)"_qs,
                                u"iPhone14,2 17.1 (21B74)"_qs,
                                u"17.1 (21B74)"_qs,
                                u"iPhone15,2 17.1 (21B74) arm64e"_qs,
                                u"16.4 (20E247)"_qs};
    EXPECT_EQ(order, expected);
}

TEST(DeviceSupportTest, RealFolderNamesReadAsMeant)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    const QString names = shared + QStringLiteral("/names/");
    const QStringList real = nonCommentLines(names + QStringLiteral("xcode-devicesupport-names.txt"));
    const QStringList derived = nonCommentLines(names + QStringLiteral("ios-devicesupport-style-derived.txt"));
    ASSERT_GT(real.size(), 30);
    ASSERT_GT(derived.size(), 280);
    test::TempTree tree;
    for (const QString& name : real + derived) {
        SCOPED_TRACE(qPrintable(name));
        const auto item = readName(tree, name);
        ASSERT_TRUE(item);
        const bool hasDevice = !name.trimmed().front().isDigit();
        EXPECT_EQ(item->as<DeviceSupportFile>()->device.has_value(), hasDevice);
        if (hasDevice && name.startsWith(u"iPhone"_qs)) {
            EXPECT_TRUE(item->label.contains(u"(iPhone"_qs)) << "known models read by name";
        }
    }
}
