#include <QDir>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "testsupport/TempTree.h"

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

TEST(AssetContentTest, BrokenTemplatesFailWithTheDecodingError)
{
    using Kind = AssetMakerError::Kind;
    const std::pair<QByteArray, Kind> cases[] = {
        {"", Kind::corruptData},
        {R"({"images" : [ {"idiom" : "mac", "size" : "16x16", "filename" : "a.png"})", Kind::corruptData}, // cut off
        {R"({"info" : {}})", Kind::missingValue},
        {R"({"images" : [ {"idiom" : "mac", "size" : "16x16"} ]})", Kind::missingValue},
        {R"({"images" : [ {"idiom" : "mac", "size" : 16, "filename" : "a.png"} ]})", Kind::corruptData},
    };
    for (const auto& [json, kind] : cases) {
        SCOPED_TRACE(json.toStdString());
        EXPECT_EQ(test::errorKind([&] { decodeAssetContent(json); }), kind);
    }
    EXPECT_EQ(decodeAssetContent(R"({"images" : []})").images.size(), 0);
}

TEST(AssetContentTest, WritesContentsJsonAtomically)
{
    test::TempTree tree;
    const AssetContent content {{{QStringLiteral("mac"), std::nullopt, QStringLiteral("16x16"),
                                  QStringLiteral("icon_16x16.png"), QStringLiteral("1x")}}};
    const QString folder = tree.mkdir(QStringLiteral("set"));
    tree.writeFile(QStringLiteral("set/Contents.json"), "old and longer than the new file, to be replaced whole");
    writeAssetContents(content, folder);
    // Left-over bytes of the old file would not decode.
    EXPECT_EQ(readAssetContent(folder, QStringLiteral("Contents.json")), content);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList {QStringLiteral("Contents.json")});
    EXPECT_EQ(test::errorKind([&] { writeAssetContents(content, tree.path(QStringLiteral("no/such/folder"))); }),
              AssetMakerError::Kind::writeFailed);
}
