#include <gtest/gtest.h>

#include "QtPrinting.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "xcode_cleanup/DeviceNames.h"
#include "xcode_cleanup/DeviceSupportReader.h"

using namespace quillbay;

namespace {

std::optional<XcodeFileProperties> readName(test::TempTree& tree, const QString& name, const QString& os = u"iOS"_qs)
{
    return readDeviceSupport(tree.mkdir(QStringLiteral("ds/") + name), os);
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
        {"iPhone14,2 17.1 (21B74) arm64e", "iOS", "iOS 17.1 (21B74) (iPhone 13 Pro)", u"iPhone14,2"_qs, "17.1",
         u"(21B74)"_qs, u"arm64e"_qs},
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
    for (const char* name : {"Unknown name", "iPhone14,2 17"}) {
        SCOPED_TRACE(name);
        test::LogCapture log;
        EXPECT_FALSE(readName(tree, QString::fromLatin1(name)));
        EXPECT_TRUE(log.contains(u"XcodeFileManager: 无设备支持版本: "_qs));
    }
}
