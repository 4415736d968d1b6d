#include <QLocale>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include "QtPrinting.h"
#include "testsupport/DeveloperTreeBuilder.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "xcode_cleanup/ArchiveReader.h"

using namespace quillbay;
using Builder = quillbay::test::DeveloperTreeBuilder;

namespace {

QByteArray toBinary(const QByteArray& xml)
{
    plist_t root = nullptr;
    plist_from_memory(xml.constData(), static_cast<uint32_t>(xml.size()), &root);
    char* data = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &data, &length);
    QByteArray bytes(data, static_cast<qsizetype>(length));
    free(data);
    plist_free(root);
    return bytes;
}

} // namespace

TEST(ArchiveReaderTest, SubmissionStatusLabelAndIconInBothPlistForms)
{
    struct Case
    {
        const char* what;
        std::optional<QStringList> uploads;
        SubmissionStatus status;
        std::optional<Icon> icon;
    };
    const Case cases[] = {
        {"no distributions", std::nullopt, SubmissionStatus::undefined, std::nullopt},
        {"failed then success", QStringList {u"failed"_qs, u"success"_qs}, SubmissionStatus::success,
         Icon::system(u"checkmark"_qs)},
        {"upload event only", QStringList {QString()}, SubmissionStatus::failure, Icon::system(u"xmark"_qs)},
    };
    test::TempTree tree;
    Builder builder(tree.path(u"Developer"_qs));
    int n = 0;
    for (const Case& c : cases) {
        for (const auto format : {Builder::PlistFormat::xml, Builder::PlistFormat::binary}) {
            SCOPED_TRACE(c.what);
            Builder::Archive spec;
            spec.bundleFileName = QStringLiteral("App %1.xcarchive").arg(++n);
            spec.uploadStates = c.uploads;
            spec.format = format;
            const auto item = readArchive(builder.addArchive(spec));
            ASSERT_TRUE(item);
            const ArchiveFile* archive = item->as<ArchiveFile>();
            EXPECT_EQ(archive->submissionStatus, c.status);
            EXPECT_EQ(item->icon, c.icon);
            EXPECT_EQ(item->label, u"1.2 (45)"_qs);
            EXPECT_EQ(archive->bundleName, u"com.example.app"_qs);
            EXPECT_EQ(archive->projectName, u"App"_qs);
            EXPECT_EQ(archive->version, Version::parse(u"1.2"));
            EXPECT_EQ(archive->date, QDateTime(QDate(2024, 1, 15), QTime(10, 0), Qt::UTC));
            EXPECT_EQ(item->info, QLocale().toString(archive->date.toLocalTime(), QLocale::ShortFormat));
            EXPECT_EQ(item->tooltip, item->label + QLatin1Char(' ') + item->info);
            EXPECT_FALSE(item->size.isKnown());
            EXPECT_FALSE(item->children);
        }
    }
}

TEST(ArchiveReaderTest, BrokenArchivesAreLeftOutWithTheirLogLine)
{
    test::TempTree tree;
    Builder builder(tree.path(u"Developer"_qs));
    Builder::Archive noName;
    noName.name.reset();
    Builder::Archive noBuild;
    noBuild.build.reset();
    const QByteArray good = Builder::archiveInfoPlist({});
    QByteArray wrongType = good;
    wrongType.replace("<key>CFBundleVersion</key>\n\t\t<string>45</string>",
                      "<key>CFBundleVersion</key>\n\t\t<integer>45</integer>");
    ASSERT_NE(wrongType, good);
    QByteArray propertiesMoved = good;
    propertiesMoved.replace("<key>ApplicationProperties</key>", "<key>ApplicationPropertiesMoved</key>");
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* logLine;
    } files[] = {
        {"noname.xcarchive", Builder::archiveInfoPlist(noName), "XcodeFileManager: 无法从存档中读取到项目名称: "},
        {"nobuild.xcarchive", Builder::archiveInfoPlist(noBuild), "XcodeFileManager: 无法从存档中获取包构建: "},
        {"cut.xcarchive", good.left(good.size() / 2), "XcodeFileManager: 无法打开存档中的 Info.plist 文件: "},
        {"cutbinary.xcarchive", toBinary(good).left(40), "XcodeFileManager: 无法打开存档中的 Info.plist 文件: "},
        {"nonstring.xcarchive", wrongType, "XcodeFileManager: 无法从存档中获取包构建: "},
        {"noproperties.xcarchive", propertiesMoved,
         "XcodeFileManager: 无法从存档的 Info.plist 文件中获取 Ap\u200b\u200bplicationProperties: "},
    };
    for (const auto& f : files) {
        SCOPED_TRACE(f.name);
        test::LogCapture log;
        EXPECT_FALSE(
            readArchive(builder.addArchiveWithInfoPlist(u"2024-02-02"_qs, QString::fromLatin1(f.name), f.bytes)));
        EXPECT_TRUE(log.contains(QString::fromUtf8(f.logLine)));
    }
    {
        // A bundle without the archive extension is left out silently.
        test::LogCapture log;
        EXPECT_FALSE(readArchive(builder.addArchiveWithInfoPlist(u"2024-02-02"_qs, u"App.xcarchive.zip"_qs, good)));
        EXPECT_TRUE(log.messages().isEmpty());
    }
    test::LogCapture log;
    EXPECT_FALSE(readArchive(builder.mkdir(u"Xcode/Archives/2024-02-03/empty.xcarchive"_qs)));
    EXPECT_TRUE(log.contains(u"无法打开存档中的 Info.plist 文件"_qs));
}
