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

// The current set's rows as the client reads them (formulae, casks); every package's detail
// document must decode too.
std::pair<QList<HomebrewPackageSummary>, QList<HomebrewPackageSummary>> published(const QString& dataDir)
{
    const QString set = catalogLayout::currentSetFolder(dataDir);
    const auto manifest = HomebrewCatalogProcessor().validatedManifest(readFile(catalogLayout::manifestPath(set)));
    EXPECT_TRUE(manifest.ok());
    QList<HomebrewPackageSummary> lists[2];
    for (const auto kind : {HomebrewCatalogKind::formula, HomebrewCatalogKind::cask}) {
        if (!manifest.ok())
            break;
        const auto& artifact = manifest.value().artifact(kind);
        const auto rows
            = HomebrewCatalogProcessor().summaries(kind, readFile(catalogLayout::snapshotPath(set, kind)),
                                                   artifact.sha256, artifact.byteCount, artifact.packageCount);
        EXPECT_TRUE(rows.ok()) << (rows.ok() ? std::string() : rows.error().debugDescription().toStdString());
        for (const auto& row : rows.ok() ? rows.value() : QList<HomebrewPackageSummary>()) {
            EXPECT_TRUE(decodeDetail(kind, readFile(catalogLayout::detailPath(set, kind, row.identifier))).ok())
                << row.identifier.toStdString();
            lists[kind == HomebrewCatalogKind::cask].append(row);
        }
    }
    return {lists[0], lists[1]};
}

} // namespace

TEST(CatalogImporterTest, BundledSampleBuildsASetTheClientAccepts)
{
    TempTree tree;
    CatalogImporter::Options options;
    options.inputDir = sourceDir() + QStringLiteral("/resources/sample-catalog");
    options.dataDir = tree.path(QStringLiteral("data"));
    const auto result = CatalogImporter::run(options);
    ASSERT_TRUE(result.ok) << result.error.toStdString();
    const auto [formulae, casks] = published(options.dataDir);
    EXPECT_EQ(formulae.size(), 9);
    EXPECT_EQ(casks.size(), 160);
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

    const auto [formulae, casks] = published(options.dataDir);
    ASSERT_EQ(formulae.size(), 2);
    EXPECT_EQ(formulae[0].summary, u"first");
    EXPECT_EQ(formulae[0].analytics.thirtyDays, 1024);
    EXPECT_EQ(formulae[1].version, u"2_3");
    EXPECT_FALSE(formulae[1].analytics.thirtyDays.has_value());
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
