#include <QDir>
#include <QFileInfo>
#include <QUuid>
#include <limits>

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

// "name WxH" for every file in the folder, in name order.
QString writtenSizes(const QString& folder)
{
    QStringList sizes;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        const QSize size = test::readPng(QDir(folder).filePath(name)).size();
        sizes << QStringLiteral("%1 %2x%3").arg(name).arg(size.width()).arg(size.height());
    }
    return sizes.join(u' ');
}

} // namespace

TEST(AssetImageSetTest, ScalesRoundUpFromTheLargestSelectedOne)
{
    struct Case
    {
        const char* name;
        QList<AssetScale> scales;
        qint64 width, height; // the set size; 0: none, the image is the largest scale
        int sourceWidth, sourceHeight;
        const char* expected;
    };
    const Case cases[] = {
        {"own size is the largest", {S::x1, S::x3}, 0, 0, 300, 300, "p@1x.png 100x100 p@3x.png 300x300"},
        {"fractions round up", {S::x1, S::x2, S::x3}, 0, 0, 100, 100, "p@1x.png 34x34 p@2x.png 67x67 p@3x.png 100x100"},
        {"set size in 1x points", {S::x1, S::x3}, 44, 30, 500, 500, "p@1x.png 44x30 p@3x.png 132x90"},
        {"largest allowed", {S::x1}, 8192, 1, 4, 4, "p@1x.png 8192x1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempTree tree;
        const QString out = tree.path(QStringLiteral("out"));
        AssetMakerService().generateImageSet({item(QStringLiteral("p"), c.sourceWidth, c.sourceHeight)}, c.scales,
                                             c.width > 0, c.width, c.height, out);
        EXPECT_EQ(writtenSizes(out).toStdString(), c.expected);
        for (const QString& name : QDir(out).entryList(QDir::Files))
            EXPECT_TRUE(test::pngHasAlphaChannel(QDir(out).filePath(name))) << name.toStdString();
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
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempTree tree;
        const QString out = tree.path(QStringLiteral("out"));
        QList<ImageSetItem> items;
        for (const QString& name : c.names)
            items.append(item(name, 9, 9));
        EXPECT_EQ(test::errorKind([&] {
                      AssetMakerService().generateImageSet(items, {S::x1, S::x3}, c.setSize, c.width, 1, out);
                  }),
                  c.kind);
        EXPECT_FALSE(QFileInfo::exists(out));
    }
    EXPECT_NE(AssetMakerService::nameKey(QStringLiteral("cafe")), AssetMakerService::nameKey(decomposed));
    // Each side times the largest scale stays within 8192, without overflowing on the way.
    constexpr qint64 huge = std::numeric_limits<qint64>::max() / 2 + 1;
    EXPECT_TRUE(AssetMakerService::isValidTargetSize(2730, 1, {S::x1, S::x3}));
    EXPECT_FALSE(AssetMakerService::isValidTargetSize(4097, 1, {S::x2, S::x1}));
    EXPECT_FALSE(AssetMakerService::isValidTargetSize(1, huge, {S::x3}));
    EXPECT_FALSE(AssetMakerService::isValidTargetSize(44, 44, {}));
}

TEST(AssetImageSetTest, ABrokenImageStopsTheRunAfterTheItemsBeforeIt)
{
    test::TempTree tree;
    const QString out = tree.path(QStringLiteral("out"));
    tree.writeFile(QStringLiteral("out/first@1x.png"), "stale bytes, replaced");
    QList<ImageSetItem> items {item(QStringLiteral("first"), 30, 30), item(QStringLiteral("broken"), 30, 30),
                               item(QStringLiteral("third"), 30, 30)};
    items[1].imageData.truncate(items[1].imageData.size() / 2);
    EXPECT_EQ(test::errorKind([&] {
                  AssetMakerService().generateImageSet(items, {S::x1, S::x2}, false, 0, 0, out);
              }),
              AssetMakerError::Kind::corruptFile);
    EXPECT_EQ(QDir(out).entryList(QDir::Files),
              (QStringList {QStringLiteral("first@1x.png"), QStringLiteral("first@2x.png")}));
    EXPECT_EQ(test::readPng(QDir(out).filePath(QStringLiteral("first@1x.png"))).size(), QSize(15, 15));
}
