#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetContent.h"
#include "assets_maker/AssetMakerError.h"
#include "testsupport/TempTree.h"

using namespace quillbay;

namespace {

AssetMakerError::Kind decodeFailure(const QByteArray& json)
{
    try {
        decodeAssetContent(json);
    } catch (const AssetMakerError& error) {
        return error.kind();
    }
    ADD_FAILURE() << "decoded: " << json.toStdString();
    return AssetMakerError::Kind::writeFailed;
}

} // namespace

TEST(AssetContentTest, ReadingDropsEveryOtherKeyAndWritingKeepsTheDeclaredOrder)
{
    // Keys in another order, an info block, roles and a null platform, as real sets have.
    const QByteArray json = R"({
      "info" : { "author" : "xcode", "version" : 1 },
      "images" : [
        { "scale" : "2x", "filename" : "a/b\"c.png", "size" : "83.5x83.5", "idiom" : "ipad", "role" : "x" },
        { "size" : "1024x1024", "filename" : "café.png", "platform" : "ios", "idiom" : "universal" },
        { "filename" : "n.png", "idiom" : "mac", "platform" : null, "size" : "16x16", "scale" : null }
      ]
    })";
    const AssetContent content = decodeAssetContent(json);
    ASSERT_EQ(content.images.size(), 3);
    EXPECT_EQ(content.images[0].scale, QStringLiteral("2x"));
    EXPECT_FALSE(content.images[0].platform);
    EXPECT_EQ(content.images[1].platform, QStringLiteral("ios"));
    EXPECT_FALSE(content.images[1].scale);
    EXPECT_FALSE(content.images[2].platform);
    EXPECT_FALSE(content.images[2].scale);

    const QByteArray expected = "{\n"
                                "  \"images\" : [\n"
                                "    {\n"
                                "      \"idiom\" : \"ipad\",\n"
                                "      \"size\" : \"83.5x83.5\",\n"
                                "      \"filename\" : \"a\\/b\\\"c.png\",\n"
                                "      \"scale\" : \"2x\"\n"
                                "    },\n"
                                "    {\n"
                                "      \"idiom\" : \"universal\",\n"
                                "      \"platform\" : \"ios\",\n"
                                "      \"size\" : \"1024x1024\",\n"
                                "      \"filename\" : \"café.png\"\n"
                                "    },\n"
                                "    {\n"
                                "      \"idiom\" : \"mac\",\n"
                                "      \"size\" : \"16x16\",\n"
                                "      \"filename\" : \"n.png\"\n"
                                "    }\n"
                                "  ]\n"
                                "}";
    EXPECT_EQ(encodeAssetContent(content).toStdString(), expected.toStdString());
    EXPECT_EQ(decodeAssetContent(encodeAssetContent(content)), content);
}

TEST(AssetContentTest, BrokenTemplatesFailWithTheDecodingError)
{
    using Kind = AssetMakerError::Kind;
    const std::pair<QByteArray, Kind> cases[] = {
        {"", Kind::corruptData},
        {"not json", Kind::corruptData},
        {R"({"images" : [ {"idiom" : "mac", "size" : "16x16", "filename" : "a.png"})", Kind::corruptData}, // cut off
        {"[]", Kind::corruptData},
        {R"({"info" : {}})", Kind::missingValue},
        {R"({"images" : {}})", Kind::corruptData},
        {R"({"images" : [ 3 ]})", Kind::corruptData},
        {R"({"images" : [ {"idiom" : "mac", "size" : "16x16"} ]})", Kind::missingValue},
        {R"({"images" : [ {"idiom" : "mac", "size" : 16, "filename" : "a.png"} ]})", Kind::corruptData},
        {R"({"images" : [ {"idiom" : "mac", "size" : "16x16", "filename" : "a.png", "scale" : 2} ]})",
         Kind::corruptData},
    };
    for (const auto& [json, kind] : cases) {
        SCOPED_TRACE(json.toStdString());
        EXPECT_EQ(decodeFailure(json), kind);
    }
    EXPECT_EQ(decodeAssetContent(R"({"images" : []})").images.size(), 0);
}

TEST(AssetContentTest, ReadsFromAFolderAndWritesContentsJsonAtomically)
{
    test::TempTree tree;
    try {
        readAssetContent(tree.root(), QStringLiteral("absent.json"));
        ADD_FAILURE() << "read a missing template";
    } catch (const AssetMakerError& error) {
        EXPECT_EQ(error.kind(), AssetMakerError::Kind::noSuchFile);
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("absent.json")));
    }

    const AssetContent content {{{QStringLiteral("mac"), std::nullopt, QStringLiteral("16x16"),
                                  QStringLiteral("icon_16x16.png"), QStringLiteral("1x")}}};
    const QString folder = tree.mkdir(QStringLiteral("set"));
    tree.writeFile(QStringLiteral("set/Contents.json"), "old and longer than the new file, to be replaced whole");
    writeAssetContents(content, folder);
    const auto json = test::readJsonFile(QDir(folder).filePath(QStringLiteral("Contents.json")));
    ASSERT_TRUE(json.is_object());
    EXPECT_EQ(json.size(), 1u);
    EXPECT_EQ(json["images"][0]["filename"], "icon_16x16.png");
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList {QStringLiteral("Contents.json")});

    try {
        writeAssetContents(content, tree.path(QStringLiteral("no/such/folder")));
        ADD_FAILURE() << "wrote into a missing folder";
    } catch (const AssetMakerError& error) {
        EXPECT_EQ(error.kind(), AssetMakerError::Kind::writeFailed);
    }
}
