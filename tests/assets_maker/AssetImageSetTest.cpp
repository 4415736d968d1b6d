#include <QDir>
#include <QFileInfo>
#include <QUuid>
#include <limits>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetMakerService.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using S = AssetScale;

namespace {

ImageSetItem item(const QString& name, int width, int height)
{
    return {QUuid::createUuid(), test::cornerMarkedPng(width, height, QColor(0, 0, 0, 0), QColor(10, 200, 90)), name};
}

std::map<std::string, QSize> writtenSizes(const QString& folder)
{
    std::map<std::string, QSize> sizes;
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        sizes[name.toStdString()] = test::readPng(QDir(folder).filePath(name)).size();
    return sizes;
}

} // namespace

TEST(AssetImageSetTest, ScalesRoundUpFromTheLargestSelectedOne)
{
    struct Case
    {
        const char* name;
        QList<AssetScale> scales;
        bool setSize;
        qint64 width, height;
        QSize source;
        std::map<std::string, QSize> expected;
    };
    const Case cases[] = {
        {"own size is the largest scale",
         {S::x1, S::x3},
         false,
         0,
         0,
         {300, 300},
         {{"pic@1x.png", {100, 100}}, {"pic@3x.png", {300, 300}}}},
        {"only 2x keeps the own size", {S::x2}, false, 0, 0, {301, 157}, {{"pic@2x.png", {301, 157}}}},
        {"fractions round up",
         {S::x1, S::x2, S::x3},
         false,
         0,
         0,
         {100, 100},
         {{"pic@1x.png", {34, 34}}, {"pic@2x.png", {67, 67}}, {"pic@3x.png", {100, 100}}}},
        {"set size 100 at 3x", {S::x3}, true, 100, 100, {20, 20}, {{"pic@3x.png", {300, 300}}}},
        {"set size counts in 1x points",
         {S::x1, S::x2},
         true,
         44,
         30,
         {500, 500},
         {{"pic@1x.png", {44, 30}}, {"pic@2x.png", {88, 60}}}},
        {"largest allowed", {S::x1}, true, 8192, 1, {4, 4}, {{"pic@1x.png", {8192, 1}}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempTree tree;
        const QString out = tree.path(QStringLiteral("out"));
        AssetMakerService().generateImageSet({item(QStringLiteral("pic"), c.source.width(), c.source.height())},
                                             c.scales, c.setSize, c.width, c.height, out);
        EXPECT_EQ(writtenSizes(out), c.expected);
        for (const QString& name : QDir(out).entryList(QDir::Files))
            EXPECT_TRUE(test::pngHasAlphaChannel(QDir(out).filePath(name))) << name.toStdString();
    }
}

TEST(AssetImageSetTest, TargetSizeCheckBoundsEachSideTimesTheLargestScale)
{
    constexpr qint64 huge = std::numeric_limits<qint64>::max() / 2 + 1;
    struct Case
    {
        qint64 width, height;
        QList<AssetScale> scales;
        bool valid;
    };
    const Case cases[] = {
        {44, 44, {}, false},
        {44, 44, {S::x1}, true},
        {0, 44, {S::x1}, false},
        {44, -1, {S::x1}, false},
        {8192, 8192, {S::x1}, true},
        {8193, 1, {S::x1}, false},
        {2730, 1, {S::x1, S::x3}, true},
        {2731, 1, {S::x3}, false},
        {4096, 4096, {S::x2}, true},
        {4097, 1, {S::x2, S::x1}, false},
        {huge, 1, {S::x2}, false},
        {1, huge, {S::x3}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        EXPECT_EQ(AssetMakerService::isValidTargetSize(c.width, c.height, c.scales), c.valid);
    }
}

TEST(AssetImageSetTest, RefusalsComeBeforeAnythingIsWritten)
{
    using Kind = AssetMakerError::Kind;
    const QString decomposed = QStringLiteral("Cafe") + QChar(0x0301);
    struct Case
    {
        const char* name;
        QStringList names;
        bool setSize;
        qint64 width;
        Kind kind;
    };
    const Case cases[] = {
        {"names differing in case", {QStringLiteral("Photo"), QStringLiteral("photo")}, false, 1, Kind::fileExists},
        {"composed and decomposed accents", {QStringLiteral("café"), decomposed}, false, 1, Kind::fileExists},
        {"size past 8192 at 3x", {QStringLiteral("a")}, true, 2731, Kind::missingTargetSize},
        {"size below one", {QStringLiteral("a")}, true, 0, Kind::missingTargetSize},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempTree tree;
        const QString out = tree.path(QStringLiteral("out"));
        QList<ImageSetItem> items;
        for (const QString& name : c.names)
            items.append(item(name, 9, 9));
        try {
            AssetMakerService().generateImageSet(items, {S::x1, S::x3}, c.setSize, c.width, 1, out);
            ADD_FAILURE() << "no error";
        } catch (const AssetMakerError& error) {
            EXPECT_EQ(error.kind(), c.kind);
        }
        EXPECT_FALSE(QFileInfo::exists(out));
    }
    EXPECT_NE(AssetMakerService::nameKey(QStringLiteral("cafe")), AssetMakerService::nameKey(decomposed));
}

TEST(AssetImageSetTest, ABrokenImageStopsTheRunAfterTheItemsBeforeIt)
{
    test::TempTree tree;
    const QString out = tree.path(QStringLiteral("out"));
    QList<ImageSetItem> items {item(QStringLiteral("first"), 30, 30), item(QStringLiteral("broken"), 30, 30),
                               item(QStringLiteral("third"), 30, 30)};
    items[1].imageData.truncate(items[1].imageData.size() / 2);
    try {
        AssetMakerService().generateImageSet(items, {S::x1, S::x2}, false, 0, 0, out);
        ADD_FAILURE() << "no error";
    } catch (const AssetMakerError& error) {
        EXPECT_EQ(error.kind(), AssetMakerError::Kind::corruptFile);
    }
    EXPECT_EQ(QDir(out).entryList(QDir::Files),
              (QStringList {QStringLiteral("first@1x.png"), QStringLiteral("first@2x.png")}));
}

TEST(AssetImageSetTest, AnExistingFileOfTheSameNameIsReplaced)
{
    test::TempTree tree;
    tree.writeFile(QStringLiteral("out/pic@1x.png"), "stale bytes");
    AssetMakerService().generateImageSet({item(QStringLiteral("pic"), 12, 12)}, {S::x1}, false, 0, 0,
                                         tree.path(QStringLiteral("out")));
    EXPECT_EQ(test::readPng(tree.path(QStringLiteral("out/pic@1x.png"))).size(), QSize(12, 12));
}
