#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "CatalogImporter.h"
#include "CatalogLayout.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"
#include "homebrew_catalog/HomebrewPackageDetail.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::services;
using namespace quillbay::test;

namespace {

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<HomebrewPackageSummary>
publishedRows(const QString& set, const HomebrewCatalogManifest& manifest, HomebrewCatalogKind kind)
{
    const auto& artifact = manifest.artifact(kind);
    const auto rows = HomebrewCatalogProcessor().summaries(kind, readFile(catalogLayout::snapshotPath(set, kind)),
                                                           artifact.sha256, artifact.byteCount, artifact.packageCount);
    EXPECT_TRUE(rows.ok()) << (rows.ok() ? std::string() : rows.error().debugDescription().toStdString());
    return rows.ok() ? rows.value() : QList<HomebrewPackageSummary>();
}

} // namespace

TEST(CatalogImporterTest, BundledSampleBuildsASetTheClientAccepts)
{
    TempTree tree;
    CatalogImporter::Options options;
    options.inputDir = sourceDir() + QStringLiteral("/resources/sample-catalog");
    options.dataDir = tree.path(QStringLiteral("data"));
    options.generatedAt = QDateTime::fromSecsSinceEpoch(1750000000, Qt::UTC);
    const auto result = CatalogImporter::run(options);
    ASSERT_TRUE(result.ok) << result.error.toStdString();
    EXPECT_EQ(result.snapshotID, u"2025-06-15_15.06.40");
    EXPECT_EQ(result.formulaCount, 9);
    EXPECT_EQ(result.caskCount, 160);

    const QString set = catalogLayout::currentSetFolder(options.dataDir);
    const auto manifest = HomebrewCatalogProcessor().validatedManifest(readFile(catalogLayout::manifestPath(set)));
    ASSERT_TRUE(manifest.ok()) << manifest.error().debugDescription().toStdString();
    const auto formulae = publishedRows(set, manifest.value(), HomebrewCatalogKind::formula);
    ASSERT_EQ(formulae.size(), 9);
    EXPECT_EQ(publishedRows(set, manifest.value(), HomebrewCatalogKind::cask).size(), 160);

    // Every package has a detail document the client can decode.
    for (const auto& row : formulae)
        EXPECT_TRUE(decodeDetail(HomebrewCatalogKind::formula,
                                 readFile(catalogLayout::detailPath(set, HomebrewCatalogKind::formula, row.identifier)))
                        .ok())
            << row.identifier.toStdString();
}

TEST(CatalogImporterTest, BadDocumentsAreLeftOutAndSetsReplaceEachOtherAtomically)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("in/formula.json"),
                   R"([{"name":"a","desc":"first"},{"name":"a","desc":"duplicate"},{"desc":"nameless"},
                       {"name":"bad","desc":5},{"name":"b","versions":{"stable":"2"},"revision":3}])");
    tree.writeFile(QStringLiteral("in/cask/one.json"), R"({"token":"one","name":["One App","Uno"],"version":null})");
    tree.writeFile(
        QStringLiteral("in/analytics/install-30d.json"),
        R"({"items":[{"formula":"a","count":"1,000"},{"formula":"a","count":"24"},{"formula":"b","count":"x"}]})");

    CatalogImporter::Options options;
    options.inputDir = tree.path(QStringLiteral("in"));
    options.dataDir = tree.path(QStringLiteral("data"));
    for (const char* id : {"s1", "s2", "s3"}) {
        options.snapshotID = QString::fromLatin1(id);
        const auto result = CatalogImporter::run(options);
        ASSERT_TRUE(result.ok) << result.error.toStdString();
        EXPECT_EQ(result.formulaCount, 2);
        EXPECT_EQ(result.warnings.size(), 3) << result.warnings.join(u'\n').toStdString();
        EXPECT_EQ(QFileInfo(catalogLayout::currentSetFolder(options.dataDir)).fileName(), options.snapshotID);
    }
    // The newest two sets stay, so a client holding the previous manifest can finish.
    EXPECT_EQ(QDir(catalogLayout::setsFolder(options.dataDir)).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              (QStringList {QStringLiteral("s2"), QStringLiteral("s3")}));

    const QString set = catalogLayout::currentSetFolder(options.dataDir);
    const auto manifest = HomebrewCatalogProcessor().validatedManifest(readFile(catalogLayout::manifestPath(set)));
    ASSERT_TRUE(manifest.ok());
    const auto formulae = publishedRows(set, manifest.value(), HomebrewCatalogKind::formula);
    ASSERT_EQ(formulae.size(), 2);
    EXPECT_EQ(formulae[0].summary, u"first");
    EXPECT_EQ(formulae[0].analytics.thirtyDays, 1024);
    EXPECT_EQ(formulae[1].version, u"2_3");
    EXPECT_FALSE(formulae[1].analytics.thirtyDays.has_value());
    const auto casks = publishedRows(set, manifest.value(), HomebrewCatalogKind::cask);
    ASSERT_EQ(casks.size(), 1);
    EXPECT_EQ(casks[0].displayName, u"One App");
    EXPECT_EQ(casks[0].aliases, QStringList {QStringLiteral("Uno")});
    EXPECT_EQ(casks[0].version, u"");

    options.snapshotID = QStringLiteral("s3");
    EXPECT_FALSE(CatalogImporter::run(options).ok); // an id is published once
    options.snapshotID = QStringLiteral("../escape");
    EXPECT_FALSE(CatalogImporter::run(options).ok);
    EXPECT_FALSE(QFileInfo::exists(tree.path(QStringLiteral("escape"))));

    // Input without casks publishes nothing.
    tree.writeFile(QStringLiteral("bare/formula.json"), R"([{"name":"a"}])");
    options.inputDir = tree.path(QStringLiteral("bare"));
    options.dataDir = tree.path(QStringLiteral("bare-data"));
    options.snapshotID = QStringLiteral("s4");
    EXPECT_FALSE(CatalogImporter::run(options).ok);
    EXPECT_TRUE(catalogLayout::currentSetFolder(options.dataDir).isEmpty());
}
