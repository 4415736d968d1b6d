#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetCatalogLayout.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetMakerService.h"
#include "assets_maker/AssetSize.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using Option = AppIconOption;

namespace {

const QColor kCorner(200, 30, 40);
const QColor kFill(20, 90, 220);

QByteArray singleEntryTemplate(const char* size, const char* filename)
{
    return QByteArray(R"({"images" : [ {"idiom" : "universal", "size" : ")") + size + R"(", "filename" : ")" + filename
        + R"("} ]})";
}

// Every entry of the set's Contents.json has its PNG, at its pixel size, with or without
// alpha; returns the entries for further checks.
AssetContent expectCompleteSet(const QString& folder, bool withAlpha)
{
    const QString contentsPath = QDir(folder).filePath(QStringLiteral("Contents.json"));
    const auto json = test::readJsonFile(contentsPath);
    EXPECT_TRUE(json.is_object()) << contentsPath.toStdString();
    EXPECT_EQ(json.size(), 1u) << "only \"images\" is written";
    QFile file(contentsPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const AssetContent content = decodeAssetContent(file.readAll());
    EXPECT_FALSE(content.images.isEmpty());
    for (const AssetItem& item : content.images) {
        SCOPED_TRACE(item.filename.toStdString());
        const QString path = QDir(folder).filePath(item.filename);
        const QImage image = test::readPng(path);
        EXPECT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), assetPixelSize(item));
        EXPECT_EQ(test::pngHasAlphaChannel(path), withAlpha);
    }
    return content;
}

struct Output
{
    test::TempTree tree;
    QString out = tree.path(QStringLiteral("out"));
    AssetMakerService service;

    QString set(const QString& relative) const { return QDir(out).filePath(relative); }
};

} // namespace

TEST(AssetIconSetTest, AllThreePlatformsFromTheBundledTemplates)
{
    Output run;
    const QByteArray image = test::cornerMarkedPng(1024, 1024, kCorner, kFill);
    run.service.generateAppIcons(image, Option::allSize, Option::allSize, Option::allSize, false,
                                 AssetCatalogLayout::bundledTemplateFolder(), run.out);

    const struct
    {
        QString folder;
        QString templateName;
        bool alpha;
    } sets[] = {
        {AssetCatalogLayout::macOSSetFolder(), QStringLiteral("macOS_contents.json"), true},
        {AssetCatalogLayout::iOSSetFolder(), QStringLiteral("iOS_allSize_contents.json"), false},
        {AssetCatalogLayout::watchOSSetFolder(), QStringLiteral("watchOS_allSize_contents.json"), false},
    };
    for (const auto& set : sets) {
        SCOPED_TRACE(set.folder.toStdString());
        const AssetContent written = expectCompleteSet(run.set(set.folder), set.alpha);
        // The entries are the template's, in its order, with nothing added.
        EXPECT_EQ(written, readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), set.templateName));
        EXPECT_EQ(QDir(run.set(set.folder)).entryList(QDir::Files).size(), written.images.size() + 1);
    }
    EXPECT_FALSE(QFileInfo::exists(run.set(AssetCatalogLayout::mergedSetFolder())));
}

TEST(AssetIconSetTest, LetterboxTakesTheFirstPixelAndRoundsTheMarginFromTheBottom)
{
    struct Case
    {
        int sourceWidth, sourceHeight;
        const char* size;
        QRect drawn; // where the picture lands on the canvas
    };
    const Case cases[] = {
        {100, 50, "1024x1024", {0, 256, 1024, 512}},
        {50, 100, "1024x1024", {256, 0, 512, 1024}},
        {10, 3, "10x10", {0, 3, 10, 3}}, // margin 3.5 rounds to 4 below, so 3 above
        {3, 10, "10x10", {4, 0, 3, 10}}, // and to 4 on the left
        {30, 20, "4x4", {0, 1, 4, 2}}, // 4 x floor(2.67)
        {10, 10, "40x20", {10, 0, 20, 20}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.size) + " from " + std::to_string(c.sourceWidth) + "x"
                     + std::to_string(c.sourceHeight));
        Output run;
        const QString templates = run.tree.mkdir(QStringLiteral("templates"));
        test::writeTemplate(templates, QStringLiteral("macOS_contents.json"), singleEntryTemplate(c.size, "icon.png"));
        run.service.generateAppIcons(test::cornerMarkedPng(c.sourceWidth, c.sourceHeight, kCorner, kFill),
                                     Option::allSize, Option::none, Option::none, false, templates, run.out);
        const QImage icon = test::readPng(run.set(AssetCatalogLayout::macOSSetFolder() + QStringLiteral("/icon.png")));
        ASSERT_FALSE(icon.isNull());
        // Sample away from the picture's own corner pixel, which scaling smears over a few
        // pixels per step of magnification.
        const int smear = 2 + 4 * ((c.drawn.width() + c.sourceWidth - 1) / c.sourceWidth);
        for (int y = 0; y < icon.height(); ++y) {
            for (int x = 0; x < icon.width(); ++x) {
                const bool inside = c.drawn.contains(x, y);
                const bool nearCorner = x < c.drawn.x() + smear && y < c.drawn.y() + smear;
                if (inside && nearCorner)
                    continue;
                const QColor expected = inside ? kFill : kCorner;
                const QColor actual = icon.pixelColor(x, y);
                if (std::abs(actual.red() - expected.red()) > 2 || std::abs(actual.blue() - expected.blue()) > 2) {
                    ADD_FAILURE() << "pixel " << x << "," << y << " is " << actual.name().toStdString();
                    return;
                }
            }
        }
    }
}

TEST(AssetIconSetTest, TransparentCornerStaysClearOnMacAndIsFlattenedElsewhere)
{
    Output run;
    const QByteArray image = test::cornerMarkedPng(100, 50, Qt::transparent, kFill);
    run.service.generateAppIcons(image, Option::allSize, Option::singleSize, Option::singleSize, false,
                                 AssetCatalogLayout::bundledTemplateFolder(), run.out);
    const QImage mac
        = test::readPng(run.set(AssetCatalogLayout::macOSSetFolder() + QStringLiteral("/icon_512x512@2x.png")));
    ASSERT_EQ(mac.size(), QSize(1024, 1024));
    EXPECT_EQ(mac.pixelColor(512, 100).alpha(), 0);
    EXPECT_EQ(mac.pixelColor(512, 512), kFill);

    for (const QString& path :
         {run.set(AssetCatalogLayout::iOSSetFolder() + QStringLiteral("/ios-1024.png")),
          run.set(AssetCatalogLayout::watchOSSetFolder() + QStringLiteral("/watchos-1024.png"))}) {
        SCOPED_TRACE(path.toStdString());
        EXPECT_FALSE(test::pngHasAlphaChannel(path));
        const QImage flat = test::readPng(path);
        ASSERT_EQ(flat.size(), QSize(1024, 1024));
        EXPECT_EQ(flat.pixelColor(512, 100), QColor(Qt::black));
        EXPECT_EQ(flat.pixelColor(512, 512), kFill);
    }
}

TEST(AssetIconSetTest, MergingJoinsIOSThenWatchOSIntoOneSetWithoutAlpha)
{
    Output run;
    run.service.generateAppIcons(test::cornerMarkedPng(64, 64, kCorner, kFill), Option::none, Option::singleSize,
                                 Option::allSize, true, AssetCatalogLayout::bundledTemplateFolder(), run.out);
    const AssetContent merged = expectCompleteSet(run.set(AssetCatalogLayout::mergedSetFolder()), false);
    const auto ios
        = readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), QStringLiteral("iOS_single_contents.json"));
    const auto watch = readAssetContent(AssetCatalogLayout::bundledTemplateFolder(),
                                        QStringLiteral("watchOS_allSize_contents.json"));
    EXPECT_EQ(merged.images, ios.images + watch.images);
    EXPECT_FALSE(QFileInfo::exists(run.set(QStringLiteral("iOS"))));
    EXPECT_FALSE(QFileInfo::exists(run.set(QStringLiteral("watchOS"))));
}

TEST(AssetIconSetTest, MergingWithOnePlatformOffMakesItsOwnSet)
{
    Output run;
    run.service.generateAppIcons(test::cornerMarkedPng(64, 64, kCorner, kFill), Option::none, Option::singleSize,
                                 Option::none, true, AssetCatalogLayout::bundledTemplateFolder(), run.out);
    expectCompleteSet(run.set(AssetCatalogLayout::iOSSetFolder()), false);
    EXPECT_FALSE(QFileInfo::exists(run.set(AssetCatalogLayout::mergedSetFolder())));
    EXPECT_FALSE(QFileInfo::exists(run.set(QStringLiteral("watchOS"))));
}

TEST(AssetIconSetTest, MacSingleSizeWritesNothingAndReportsNothing)
{
    Output run;
    run.service.generateAppIcons(test::cornerMarkedPng(64, 64, kCorner, kFill), Option::singleSize, Option::none,
                                 Option::none, false, AssetCatalogLayout::bundledTemplateFolder(), run.out);
    EXPECT_TRUE(QDir(run.out).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());
}

TEST(AssetIconSetTest, EqualFileNamesInAMergedSetLeaveTheLaterFileAndBothEntries)
{
    Output run;
    const QString templates = run.tree.mkdir(QStringLiteral("templates"));
    test::writeTemplate(templates, QStringLiteral("iOS_single_contents.json"),
                        singleEntryTemplate("20x20", "same.png"));
    test::writeTemplate(templates, QStringLiteral("watchOS_single_contents.json"),
                        singleEntryTemplate("30x30", "same.png"));
    run.service.generateAppIcons(test::cornerMarkedPng(64, 64, kCorner, kFill), Option::none, Option::singleSize,
                                 Option::singleSize, true, templates, run.out);
    const QString set = run.set(AssetCatalogLayout::mergedSetFolder());
    EXPECT_EQ(test::readPng(set + QStringLiteral("/same.png")).size(), QSize(30, 30));
    const auto json = test::readJsonFile(set + QStringLiteral("/Contents.json"));
    ASSERT_EQ(json["images"].size(), 2u);
    EXPECT_EQ(json["images"][0]["size"], "20x20");
    EXPECT_FALSE(json["images"][0].contains("scale"));
    EXPECT_FALSE(json["images"][0].contains("platform"));
}

TEST(AssetIconSetTest, FailuresStopTheRunAndLeaveFinishedFilesOnDisk)
{
    using Kind = AssetMakerError::Kind;
    const QByteArray goodMac = singleEntryTemplate("16x16", "mac.png");
    const QByteArray badEntryInTheMiddle = R"({"images" : [
        {"idiom" : "universal", "size" : "20x20", "filename" : "first.png", "scale" : "2x"},
        {"idiom" : "universal", "size" : "20X20", "filename" : "bad.png", "scale" : "2x"},
        {"idiom" : "universal", "size" : "30x30", "filename" : "after.png"} ]})";
    const QByteArray unknownScale
        = R"({"images" : [ {"idiom" : "universal", "size" : "20x20", "filename" : "a.png", "scale" : "4x"} ]})";
    struct Case
    {
        const char* name;
        QByteArray iosTemplate; // empty: no file
        Kind kind;
        QStringList iosFiles; // what the iOS set holds afterwards; empty: no folder
    };
    const Case cases[] = {
        {"missing template", {}, Kind::noSuchFile, {}},
        {"undecodable template", "{ \"images\" : [", Kind::corruptData, {}},
        {"bad size after a good entry", badEntryInTheMiddle, Kind::corruptData, {QStringLiteral("first.png")}},
        {"unknown scale", unknownScale, Kind::corruptData, {QStringLiteral(".")}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Output run;
        const QString templates = run.tree.mkdir(QStringLiteral("templates"));
        test::writeTemplate(templates, QStringLiteral("macOS_contents.json"), goodMac);
        if (!c.iosTemplate.isEmpty())
            test::writeTemplate(templates, QStringLiteral("iOS_allSize_contents.json"), c.iosTemplate);
        try {
            run.service.generateAppIcons(test::cornerMarkedPng(32, 32, kCorner, kFill), Option::allSize,
                                         Option::allSize, Option::allSize, false, templates, run.out);
            ADD_FAILURE() << "no error";
        } catch (const AssetMakerError& error) {
            EXPECT_EQ(error.kind(), c.kind);
        }
        // macOS came first and is complete; watchOS after the failure was never started.
        expectCompleteSet(run.set(AssetCatalogLayout::macOSSetFolder()), true);
        EXPECT_FALSE(QFileInfo::exists(run.set(QStringLiteral("watchOS"))));
        const QDir ios(run.set(AssetCatalogLayout::iOSSetFolder()));
        if (c.iosFiles.isEmpty()) {
            EXPECT_FALSE(ios.exists());
        } else {
            QStringList expected = c.iosFiles;
            expected.removeAll(QStringLiteral("."));
            EXPECT_EQ(ios.entryList(QDir::Files), expected);
        }
    }
}

TEST(AssetIconSetTest, BytesThatAreNoImageFailBeforeAnythingIsWritten)
{
    Output run;
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("GIF89a but not really"), test::cornerMarkedPng(64, 64, kCorner, kFill).left(60)}) {
        try {
            run.service.generateAppIcons(bytes, Option::allSize, Option::allSize, Option::none, false,
                                         AssetCatalogLayout::bundledTemplateFolder(), run.out);
            ADD_FAILURE() << "no error";
        } catch (const AssetMakerError& error) {
            EXPECT_EQ(error.kind(), AssetMakerError::Kind::corruptFile);
            EXPECT_EQ(error.localizedDescription(),
                      QStringLiteral("The file couldn’t be opened because it isn’t in the correct format."));
        }
        EXPECT_FALSE(QFileInfo::exists(run.out));
    }
}

TEST(AssetIconSetTest, AnOutputPathThatIsAFileFailsToWrite)
{
    Output run;
    const QString blocker = run.tree.writeFile(QStringLiteral("taken"), "a file, not a folder");
    try {
        run.service.generateAppIcons(test::cornerMarkedPng(8, 8, kCorner, kFill), Option::allSize, Option::none,
                                     Option::none, false, AssetCatalogLayout::bundledTemplateFolder(), blocker);
        ADD_FAILURE() << "no error";
    } catch (const AssetMakerError& error) {
        EXPECT_EQ(error.kind(), AssetMakerError::Kind::writeFailed);
    }
}

TEST(AssetIconSetTest, FlatteningCompositesHalfTransparentPixelsOverBlack)
{
    Output run;
    const QByteArray image = test::cornerMarkedPng(64, 64, Qt::transparent, QColor(200, 100, 50, 128));
    run.service.generateAppIcons(image, Option::allSize, Option::singleSize, Option::none, false,
                                 AssetCatalogLayout::bundledTemplateFolder(), run.out);
    const QImage flat = test::readPng(run.set(AssetCatalogLayout::iOSSetFolder() + QStringLiteral("/ios-1024.png")));
    ASSERT_FALSE(flat.isNull());
    const QColor middle = flat.pixelColor(512, 512);
    EXPECT_NEAR(middle.red(), 100, 2);
    EXPECT_NEAR(middle.green(), 50, 2);
    EXPECT_NEAR(middle.blue(), 25, 2);
    const QImage mac
        = test::readPng(run.set(AssetCatalogLayout::macOSSetFolder() + QStringLiteral("/icon_512x512@2x.png")));
    EXPECT_NEAR(mac.pixelColor(512, 512).alpha(), 128, 1);
    EXPECT_NEAR(mac.pixelColor(512, 512).red(), 200, 3);
}
