#include <gtest/gtest.h>

#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"

using namespace quillbay;

TEST(AssetContentTest, ReadingDropsEveryOtherKeyAndWritingKeepsTheDeclaredOrder)
{
    // Keys in another order, an info block, roles and null values, as real sets have.
    const QByteArray json = R"({
      "info" : { "author" : "xcode", "version" : 1 },
      "images" : [
        { "scale" : "2x", "filename" : "a/b\"c.png", "size" : "83.5x83.5", "idiom" : "ipad", "role" : "x" },
        { "filename" : "café.png", "idiom" : "mac", "platform" : null, "size" : "16x16", "scale" : null }
      ]
    })";
    AssetContent content = decodeAssetContent(json);
    ASSERT_EQ(content.images.size(), 2);
    EXPECT_FALSE(content.images[1].platform);
    EXPECT_FALSE(content.images[1].scale);
    content.images[1].platform = QStringLiteral("ios");

    const QByteArray expected = R"({
  "images" : [
    {
      "idiom" : "ipad",
      "size" : "83.5x83.5",
      "filename" : "a\/b\"c.png",
      "scale" : "2x"
    },
    {
      "idiom" : "mac",
      "platform" : "ios",
      "size" : "16x16",
      "filename" : "café.png"
    }
  ]
})";
    EXPECT_EQ(encodeAssetContent(content).toStdString(), expected.toStdString());
    EXPECT_EQ(decodeAssetContent(encodeAssetContent(content)), content);
}

// The grammar and the pixel arithmetic in one table: every size that does not parse, and
// every bad scale, is corrupt data when its pixels are asked for.
TEST(AssetSizeTest, PixelSizeMultipliesInFloatsAndRefusesBadSizesAndScales)
{
    struct Case
    {
        const char16_t* size;
        const char* scale; // nullptr: absent
        int width = -1, height = -1; // -1: corrupt data
    };
    const Case cases[] = {
        {u"20x20", nullptr, 20, 20},
        {u"83.5x83.5", "2x", 167, 167},
        {u"0.9x0.4", "1x", 0, 0},
        {u"1.x.5", "2x", 2, 1},
        {u"20X20", "1x"},
        {u" 20x20", "1x"},
        {u"1e3x1e3", "1x"},
        {u"\u0662\u0660x\u0662\u0660", "1x"}, // Arabic-Indic digits
        {u"99999999999999999999999999999999999999999999x1", "1x"}, // infinite as a float
        {u"3000000000x1", "1x"}, // past any image side
        {u"20x20", "4x"},
    };
    for (const Case& c : cases) {
        const QString size = QString::fromUtf16(c.size);
        SCOPED_TRACE(size.toStdString() + " @ " + (c.scale ? c.scale : "none"));
        const AssetItem item {QStringLiteral("mac"), std::nullopt, size, QStringLiteral("a.png"),
                              c.scale ? std::optional(QString::fromLatin1(c.scale)) : std::nullopt};
        if (c.width >= 0) {
            EXPECT_EQ(assetPixelSize(item), QSize(c.width, c.height));
            ASSERT_TRUE(parseAssetSize(size).has_value());
            EXPECT_EQ(parseAssetSize(size)->text, size);
            continue;
        }
        try {
            assetPixelSize(item);
            ADD_FAILURE() << "no error";
        } catch (const AssetMakerError& error) {
            EXPECT_EQ(error.kind(), AssetMakerError::Kind::corruptData);
            EXPECT_EQ(error.code(), 4864);
        }
    }
}
