#include <QDir>
#include <QFile>
#include <QSet>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "assets_maker/AppIconOption.h"
#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;

namespace {

AssetContent bundled(const QString& name)
{
    return readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), name + QStringLiteral(".json"));
}

// (idiom, size, scale) with an absent scale read as 1x, and the pixel side: what a real set
// and ours must agree on. Empty slots (no filename) count too, so entries are read loosely.
struct Slot
{
    std::string idiom;
    std::string size;
    std::string scale;
    int pixels;
    bool operator<(const Slot& other) const
    {
        return std::tie(idiom, size, scale) < std::tie(other.idiom, other.size, other.scale);
    }
};

std::vector<Slot> realSlots(const QString& realdata, const QString& folder)
{
    QFile file(QDir(realdata).filePath(QStringLiteral("appiconset/") + folder + QStringLiteral("/Contents.json")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << folder.toStdString();
    // Real sets carry slots without files; fill in a name so that the decoder takes them.
    QByteArray json = file.readAll();
    json.replace("\"idiom\"", "\"filename\" : \"x.png\", \"idiom\"");
    std::vector<Slot> found;
    for (const AssetItem& item : decodeAssetContent(json).images) {
        // Appearance variants (dark, tinted) of a slot have the same size; one of each is enough.
        found.push_back({item.idiom.toStdString(), item.size.toStdString(),
                         item.scale.value_or(QStringLiteral("1x")).toStdString(), assetPixelSize(item).width()});
    }
    return found;
}

std::set<int> pixelSides(const AssetContent& content)
{
    std::set<int> sides;
    for (const AssetItem& item : content.images)
        sides.insert(assetPixelSize(item).width());
    return sides;
}

} // namespace

TEST(AssetTemplatesTest, EveryTemplateIsWellFormedWithDistinctFileNames)
{
    QSet<QString> iosAndWatchNames;
    const QString names[]
        = {QStringLiteral("macOS_contents"), *appIconTemplateName(AppIconOption::singleSize, QStringLiteral("iOS")),
           *appIconTemplateName(AppIconOption::allSize, QStringLiteral("iOS")),
           *appIconTemplateName(AppIconOption::singleSize, QStringLiteral("watchOS")),
           *appIconTemplateName(AppIconOption::allSize, QStringLiteral("watchOS"))};
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const AssetContent content = bundled(name);
        ASSERT_FALSE(content.images.isEmpty());
        QSet<QString> fileNames;
        for (const AssetItem& item : content.images) {
            EXPECT_TRUE(item.filename.endsWith(QStringLiteral(".png")));
            EXPECT_FALSE(fileNames.contains(item.filename)) << item.filename.toStdString();
            fileNames.insert(item.filename);
            const QSize pixels = assetPixelSize(item);
            EXPECT_EQ(pixels.width(), pixels.height());
            EXPECT_GE(pixels.width(), 16);
            EXPECT_LE(pixels.width(), 1024);
        }
        // The single-size sets may share a name with the all-size set of their platform,
        // never with the other platform's, so a merged set loses no file.
        if (name != QStringLiteral("macOS_contents")) {
            const bool ios = name.startsWith(QStringLiteral("iOS"));
            for (const QString& fileName : fileNames) {
                const QString keyed = (ios ? QStringLiteral("ios:") : QStringLiteral("watch:")) + fileName;
                const QString other = (ios ? QStringLiteral("watch:") : QStringLiteral("ios:")) + fileName;
                EXPECT_FALSE(iosAndWatchNames.contains(other)) << fileName.toStdString();
                iosAndWatchNames.insert(keyed);
            }
        }
    }
    EXPECT_FALSE(appIconTemplateName(AppIconOption::none, QStringLiteral("iOS")));
    EXPECT_EQ(*appIconTemplateName(AppIconOption::allSize, QStringLiteral("watchOS")),
              QStringLiteral("watchOS_allSize_contents"));
}

TEST(AssetTemplatesTest, MacAllSizesHasTheSlotsOfRealMacSets)
{
    QUILLBAY_REQUIRE_SHARED_DATA(realdata);
    std::set<Slot> ours;
    for (const AssetItem& item : bundled(QStringLiteral("macOS_contents")).images)
        ours.insert({item.idiom.toStdString(), item.size.toStdString(),
                     item.scale.value_or(QStringLiteral("1x")).toStdString(), 0});
    for (const QString& folder : {QStringLiteral("macos"), QStringLiteral("macos-empty-slots"),
                                  QStringLiteral("macos-dark-appearance-handwritten")}) {
        SCOPED_TRACE(folder.toStdString());
        const auto real = realSlots(realdata, folder);
        const std::set<Slot> realSet(real.begin(), real.end());
        EXPECT_EQ(realSet.size(), ours.size());
        for (const Slot& slot : realSet)
            EXPECT_TRUE(ours.count(slot)) << slot.size << " @ " << slot.scale;
    }
}

TEST(AssetTemplatesTest, IOSSetsCoverTheRealSets)
{
    QUILLBAY_REQUIRE_SHARED_DATA(realdata);
    // Single size: one universal 1024 entry for iOS, as Xcode writes it.
    for (const QString& folder : {QStringLiteral("ios-single-size"), QStringLiteral("ios-single-size-dark-tinted")}) {
        SCOPED_TRACE(folder.toStdString());
        const AssetContent single = bundled(QStringLiteral("iOS_single_contents"));
        ASSERT_EQ(single.images.size(), 1);
        for (const Slot& slot : realSlots(realdata, folder)) {
            EXPECT_EQ(slot.idiom, single.images[0].idiom.toStdString());
            EXPECT_EQ(slot.size, single.images[0].size.toStdString());
            EXPECT_FALSE(single.images[0].scale);
        }
        EXPECT_EQ(single.images[0].platform, QStringLiteral("ios"));
    }
    // All sizes: every Retina size of the iPhone and iPad sets; the 1x iPad slots were for
    // non-Retina iPads, which no current iOS runs on.
    const std::set<int> ours = pixelSides(bundled(QStringLiteral("iOS_allSize_contents")));
    for (const QString& folder : {QStringLiteral("ios-all-sizes"), QStringLiteral("ios-all-sizes-empty-slots")}) {
        SCOPED_TRACE(folder.toStdString());
        for (const Slot& slot : realSlots(realdata, folder)) {
            if (slot.scale == "1x" && slot.pixels < 1024)
                continue;
            EXPECT_TRUE(ours.count(slot.pixels)) << slot.idiom << " " << slot.size << " @ " << slot.scale;
        }
    }
}

TEST(AssetTemplatesTest, WatchSetsCoverEveryPixelSizeOfTheRealSets)
{
    QUILLBAY_REQUIRE_SHARED_DATA(realdata);
    const std::set<int> ours = pixelSides(bundled(QStringLiteral("watchOS_allSize_contents")));
    for (const QString& folder : {QStringLiteral("watchos"), QStringLiteral("watchos-empty-slots-38-42mm"),
                                  QStringLiteral("watchos-tool-generated-no-roles")}) {
        SCOPED_TRACE(folder.toStdString());
        for (const Slot& slot : realSlots(realdata, folder))
            EXPECT_TRUE(ours.count(slot.pixels)) << slot.idiom << " " << slot.size << " @ " << slot.scale;
    }
    const AssetContent single = bundled(QStringLiteral("watchOS_single_contents"));
    ASSERT_EQ(single.images.size(), 1);
    EXPECT_EQ(single.images[0].idiom, QStringLiteral("universal"));
    EXPECT_EQ(single.images[0].platform, QStringLiteral("watchos"));
    EXPECT_EQ(assetPixelSize(single.images[0]), QSize(1024, 1024));
}

TEST(AssetTemplatesTest, RealSetsWithFilesRoundTripAndEmptySlotsAreRefused)
{
    QUILLBAY_REQUIRE_SHARED_DATA(realdata);
    const std::pair<const char*, bool> folders[] = {
        {"ios-all-sizes", true},
        {"macos", true},
        {"watchos", true},
        {"ios-single-size", true},
        {"macos-dark-appearance-handwritten", true},
        {"ios-all-sizes-empty-slots", false},
        {"macos-empty-slots", false},
        {"ios-single-size-dark-tinted", false},
    };
    for (const auto& [folder, complete] : folders) {
        SCOPED_TRACE(folder);
        QFile file(QDir(realdata).filePath(QStringLiteral("appiconset/%1/Contents.json").arg(QLatin1String(folder))));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray json = file.readAll();
        if (!complete) {
            EXPECT_THROW(decodeAssetContent(json), AssetMakerError);
            continue;
        }
        const AssetContent content = decodeAssetContent(json);
        EXPECT_FALSE(content.images.isEmpty());
        EXPECT_EQ(decodeAssetContent(encodeAssetContent(content)), content);
    }
}
