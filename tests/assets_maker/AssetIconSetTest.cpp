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
using Kind = AssetMakerError::Kind;

namespace {

const QColor kCorner(200, 30, 40);
const QColor kFill(20, 90, 220);

QByteArray singleEntryTemplate(const char* size, const char* filename)
{
    return QByteArray(R"({"images" : [ {"idiom" : "universal", "size" : ")") + size + R"(", "filename" : ")" + filename
        + R"("} ]})";
}

// Every entry of the set's Contents.json has its PNG, at its pixel size, with or without
// alpha, and the folder holds nothing else; returns the entries for further checks.
AssetContent expectCompleteSet(const QString& folder, bool withAlpha)
{
    const AssetContent content = readAssetContent(folder, AssetCatalogLayout::contentsFileName());
    EXPECT_FALSE(content.images.isEmpty());
    for (const AssetItem& item : content.images) {
        SCOPED_TRACE(item.filename.toStdString());
        const QString path = QDir(folder).filePath(item.filename);
        EXPECT_EQ(test::readPng(path).size(), assetPixelSize(item));
        EXPECT_EQ(test::pngHasAlphaChannel(path), withAlpha);
    }
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), content.images.size() + 1);
    return content;
}

AssetContent bundled(const char* name)
{
    return readAssetContent(AssetCatalogLayout::bundledTemplateFolder(), QLatin1String(name));
}

struct Output
{
    test::TempTree tree;
    QString out = tree.path(QStringLiteral("out"));
    QString templates = AssetCatalogLayout::bundledTemplateFolder();

    void generate(const QByteArray& image, Option macOS, Option iOS, Option watchOS, bool merge = false)
    {
        AssetMakerService().generateAppIcons(image, macOS, iOS, watchOS, merge, templates, out);
    }
    QString set(const QString& relative) const { return QDir(out).filePath(relative); }
    void useTemplates(const std::vector<std::pair<const char*, QByteArray>>& files)
    {
        templates = tree.mkdir(QStringLiteral("templates"));
        for (const auto& [name, json] : files)
            test::writeTemplate(templates, QLatin1String(name), json);
    }
};

} // namespace

TEST(AssetIconSetTest, AllThreePlatformsFromTheBundledTemplatesWithTheirAlpha)
{
    Output run;
    // A clear letterbox around a half-transparent picture.
    run.generate(test::cornerMarkedPng(100, 50, Qt::transparent, QColor(200, 100, 50, 128)), Option::allSize,
                 Option::allSize, Option::allSize);
    const std::tuple<QString, const char*, bool> sets[] = {
        {AssetCatalogLayout::macOSSetFolder(), "macOS_contents.json", true},
        {AssetCatalogLayout::iOSSetFolder(), "iOS_allSize_contents.json", false},
        {AssetCatalogLayout::watchOSSetFolder(), "watchOS_allSize_contents.json", false},
    };
    for (const auto& [folder, templateName, alpha] : sets) {
        SCOPED_TRACE(folder.toStdString());
        // The entries are the template's, in its order, with nothing added.
        EXPECT_EQ(expectCompleteSet(run.set(folder), alpha), bundled(templateName));
    }
    EXPECT_FALSE(QFileInfo::exists(run.set(AssetCatalogLayout::mergedSetFolder())));

    // Alpha stays on macOS and is composited over black elsewhere.
    const QImage mac
        = test::readPng(run.set(AssetCatalogLayout::macOSSetFolder() + QStringLiteral("/icon_512x512@2x.png")));
    ASSERT_EQ(mac.size(), QSize(1024, 1024));
    EXPECT_EQ(mac.pixelColor(512, 100).alpha(), 0);
    EXPECT_NEAR(mac.pixelColor(512, 512).alpha(), 128, 1);
    EXPECT_NEAR(mac.pixelColor(512, 512).red(), 200, 3);
    for (const QString& path :
         {run.set(AssetCatalogLayout::iOSSetFolder() + QStringLiteral("/ios-1024.png")),
          run.set(AssetCatalogLayout::watchOSSetFolder() + QStringLiteral("/watchos-1024.png"))}) {
        SCOPED_TRACE(path.toStdString());
        const QImage flat = test::readPng(path);
        ASSERT_EQ(flat.size(), QSize(1024, 1024));
        EXPECT_EQ(flat.pixelColor(512, 100), QColor(Qt::black));
        const QColor middle = flat.pixelColor(512, 512);
        EXPECT_NEAR(middle.red(), 100, 2);
        EXPECT_NEAR(middle.green(), 50, 2);
        EXPECT_NEAR(middle.blue(), 25, 2);
    }
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
        {10, 3, "10x10", {0, 3, 10, 3}}, // margin 3.5 rounds to 4 below, so 3 above
        {3, 10, "10x10", {4, 0, 3, 10}}, // and to 4 on the left
        {30, 20, "4x4", {0, 1, 4, 2}}, // 4 x floor(2.67)
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.size) + " from " + std::to_string(c.sourceWidth) + "x"
                     + std::to_string(c.sourceHeight));
        Output run;
        run.useTemplates({{"macOS_contents.json", singleEntryTemplate(c.size, "icon.png")}});
        run.generate(test::cornerMarkedPng(c.sourceWidth, c.sourceHeight, kCorner, kFill), Option::allSize,
                     Option::none, Option::none);
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

TEST(AssetIconSetTest, EqualFileNamesInAMergedSetLeaveTheLaterFileAndBothEntries)
{
    Output run;
    run.useTemplates({{"iOS_single_contents.json", singleEntryTemplate("20x20", "same.png")},
                      {"watchOS_single_contents.json", singleEntryTemplate("30x30", "same.png")}});
    run.generate(test::cornerMarkedPng(64, 64, kCorner, kFill), Option::none, Option::singleSize, Option::singleSize,
                 true);
    const QString set = run.set(AssetCatalogLayout::mergedSetFolder());
    EXPECT_EQ(QDir(run.out).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              QStringList {QStringLiteral("iOS&watchOS")});
    EXPECT_EQ(test::readPng(set + QStringLiteral("/same.png")).size(), QSize(30, 30));
    const AssetContent content = readAssetContent(set, QStringLiteral("Contents.json"));
    // Both entries stay, iOS's first, then watchOS's.
    ASSERT_EQ(content.images.size(), 2);
    EXPECT_EQ(content.images[0].size, QStringLiteral("20x20"));
    EXPECT_EQ(content.images[1].size, QStringLiteral("30x30"));
    EXPECT_FALSE(content.images[0].scale);
    EXPECT_FALSE(content.images[0].platform);
}

TEST(AssetIconSetTest, FailuresStopTheRunAndLeaveFinishedFilesOnDisk)
{
    const QByteArray badEntryInTheMiddle = R"({"images" : [
        {"idiom" : "universal", "size" : "20x20", "filename" : "first.png", "scale" : "2x"},
        {"idiom" : "universal", "size" : "20X20", "filename" : "bad.png", "scale" : "2x"},
        {"idiom" : "universal", "size" : "30x30", "filename" : "after.png"} ]})";
    struct Case
    {
        const char* name;
        QByteArray iosTemplate; // empty: no file
        Kind kind;
        std::optional<QStringList> iosFiles; // what the iOS set holds afterwards; none: no folder
    };
    const Case cases[] = {
        {"missing template", {}, Kind::noSuchFile, std::nullopt},
        {"bad size after a good entry", badEntryInTheMiddle, Kind::corruptData,
         QStringList {QStringLiteral("first.png")}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Output run;
        run.useTemplates({{"macOS_contents.json", singleEntryTemplate("16x16", "mac.png")}});
        if (!c.iosTemplate.isEmpty())
            test::writeTemplate(run.templates, QStringLiteral("iOS_allSize_contents.json"), c.iosTemplate);
        EXPECT_EQ(test::errorKind([&] {
                      run.generate(test::cornerMarkedPng(32, 32, kCorner, kFill), Option::allSize, Option::allSize,
                                   Option::allSize);
                  }),
                  c.kind);
        // macOS came first and is complete; watchOS after the failure was never started.
        expectCompleteSet(run.set(AssetCatalogLayout::macOSSetFolder()), true);
        EXPECT_FALSE(QFileInfo::exists(run.set(QStringLiteral("watchOS"))));
        const QDir ios(run.set(AssetCatalogLayout::iOSSetFolder()));
        EXPECT_EQ(ios.exists(), c.iosFiles.has_value());
        if (c.iosFiles) {
            EXPECT_EQ(ios.entryList(QDir::Files), *c.iosFiles);
        }
    }

    // A broken image or an output path taken by a file fail before anything is written.
    Output run;
    EXPECT_EQ(test::errorKind([&] {
                  run.generate(test::cornerMarkedPng(64, 64, kCorner, kFill).left(60), Option::allSize, Option::allSize,
                               Option::none);
              }),
              Kind::corruptFile);
    EXPECT_FALSE(QFileInfo::exists(run.out));
    run.out = run.tree.writeFile(QStringLiteral("taken"), "a file, not a folder");
    EXPECT_EQ(test::errorKind([&] {
                  run.generate(test::cornerMarkedPng(8, 8, kCorner, kFill), Option::allSize, Option::none,
                               Option::none);
              }),
              Kind::writeFailed);
}
