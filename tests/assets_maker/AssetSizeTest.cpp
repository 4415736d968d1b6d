#include <gtest/gtest.h>

#include "assets_maker/AssetMakerError.h"
#include "assets_maker/AssetSize.h"

using namespace quillbay;

TEST(AssetSizeTest, GrammarAcceptsOnlyDigitsDotsAndALowerCaseX)
{
    struct Case
    {
        const char16_t* text;
        bool parses;
        float width;
        float height;
    };
    const Case cases[] = {
        {u"20x20", true, 20, 20},
        {u"83.5x83.5", true, 83.5f, 83.5f},
        {u"1024x1024", true, 1024, 1024},
        {u"16x32", true, 16, 32},
        {u"1.x.5", true, 1, 0.5f},
        {u"20X20", false, 0, 0},
        {u"x20", false, 0, 0},
        {u"20x", false, 0, 0},
        {u".x.", false, 0, 0},
        {u"1.2.3x4", false, 0, 0},
        {u" 20x20", false, 0, 0},
        {u"20 x 20", false, 0, 0},
        {u"20x20x20", false, 0, 0},
        {u"-20x20", false, 0, 0},
        {u"1e3x1e3", false, 0, 0},
        {u"\u0662\u0660x\u0662\u0660", false, 0, 0}, // Arabic-Indic digits
        {u"", false, 0, 0},
    };
    for (const Case& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(text.toStdString());
        const auto size = parseAssetSize(text);
        ASSERT_EQ(size.has_value(), c.parses);
        if (size) {
            EXPECT_FLOAT_EQ(size->width, c.width);
            EXPECT_FLOAT_EQ(size->height, c.height);
            EXPECT_EQ(size->text, text);
        }
    }
}

TEST(AssetSizeTest, PixelSizeMultipliesInFloatsAndDropsTheFraction)
{
    struct Case
    {
        const char* size;
        std::optional<const char*> scale;
        int width;
        int height;
    };
    const Case cases[] = {
        {"20x20", std::nullopt, 20, 20}, {"20x20", "1x", 20, 20},     {"83.5x83.5", "2x", 167, 167},
        {"40.5x40.5", "3x", 121, 121},   {"27.5x27.5", "2x", 55, 55}, {"1024x1024", "3x", 3072, 3072},
        {"0.9x0.4", "1x", 0, 0},         {"16x32", "2x", 32, 64},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.size);
        AssetItem item {QStringLiteral("universal"), std::nullopt, QString::fromLatin1(c.size), QStringLiteral("a.png"),
                        c.scale ? std::optional(QString::fromLatin1(*c.scale)) : std::nullopt};
        EXPECT_EQ(assetPixelSize(item), QSize(c.width, c.height));
    }
}

TEST(AssetSizeTest, BadSizesAndScalesAreCorruptData)
{
    const std::pair<const char*, const char*> cases[] = {
        {"20X20", "2x"},
        {".x.", "1x"},
        {"20x20", "4x"},
        {"20x20", "2X"},
        {"20x20", "@2x"},
        {"20x20", ""},
        {"99999999999999999999999999999999999999999999x1", "1x"}, // infinite as a float
        {"3000000000x1", "1x"}, // past any image side
    };
    for (const auto& [size, scale] : cases) {
        SCOPED_TRACE(std::string(size) + " @ " + scale);
        AssetItem item {QStringLiteral("mac"), std::nullopt, QString::fromLatin1(size), QStringLiteral("a.png"),
                        QString::fromLatin1(scale)};
        try {
            assetPixelSize(item);
            ADD_FAILURE() << "no error";
        } catch (const AssetMakerError& error) {
            EXPECT_EQ(error.kind(), AssetMakerError::Kind::corruptData);
            EXPECT_EQ(error.code(), 4864);
        }
    }
}
