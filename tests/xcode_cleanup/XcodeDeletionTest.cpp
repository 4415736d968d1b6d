#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <gtest/gtest.h>

#include "foundation/Log.h"
#include "testsupport/ImmutableFile.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "xcode_cleanup/XcodeDeletion.h"

using namespace quillbay;
using quillbay::test::TempTree;

namespace {

// Everything below a folder, without following links: path -> kind and size or target.
QMap<QString, QString> snapshot(const QString& folder)
{
    QMap<QString, QString> entries;
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        const QString key = info.filePath().mid(folder.size());
        if (info.isSymLink())
            entries.insert(key, QStringLiteral("link ") + info.symLinkTarget());
        else if (info.isDir())
            entries.insert(key, QStringLiteral("dir"));
        else
            entries.insert(key, QStringLiteral("file %1").arg(info.size()));
    }
    return entries;
}

qint64 allocatedBelow(const QString& path)
{
    const QFileInfo top(path);
    if (top.isSymLink() || !top.isDir())
        return TempTree::allocatedBytes(path);
    qint64 total = 0;
    QDirIterator it(path, QDir::Files | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info = it.nextFileInfo();
        if (!info.isSymLink())
            total += TempTree::allocatedBytes(info.filePath());
    }
    return total;
}

const QString kFirst = QStringLiteral("Rejected Xcode cleanup item outside an authorized root.");
const QString kSecond = QStringLiteral("Rejected Xcode cleanup item after its parent changed.");

// A Developer folder with every built-in folder, and beside it a folder that holds what
// must survive every case.
struct Sandbox
{
    TempTree tree;
    QString developer = tree.mkdir(QStringLiteral("home/Library/Developer"));
    QString xcode = tree.mkdir(QStringLiteral("home/Library/Developer/Xcode"));
    QString outside = tree.mkdir(QStringLiteral("outside"));

    Sandbox()
    {
        for (const char* folder : {"Archives", "DerivedData", "DocumentationCache", "iOS Device Logs",
                                   "UserData/Previews", "iOS DeviceSupport", "macOS DeviceSupport"})
            tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/") + QLatin1String(folder));
        tree.writeSizedFile(QStringLiteral("outside/App.xcarchive/Info.plist"), 9000);
        tree.writeSizedFile(QStringLiteral("outside/Proj-abc/Build/big.o"), 40000);
        tree.writeFile(QStringLiteral("outside/keep.txt"), "precious");
    }

    QString x(const QString& relative) const { return xcode + QLatin1Char('/') + relative; }

    XcodeDeletion deletion(const QStringList& customDerivedData = {}) const
    {
        return XcodeDeletion(
            XcodeDeletion::authorizedRoots(XcodeDeletion::builtInRoots(developer), {}, customDerivedData),
            &allocatedBelow);
    }
};

} // namespace

TEST(XcodeDeletionTest, NothingOutsideTheRootsIsEverRemoved)
{
    struct Case
    {
        const char* name;
        std::function<QString(Sandbox&)> prepare; // returns the target
        QString expectedLog;
    };
    const Case cases[] = {
        {"a target equal to a root", [](Sandbox& s) { return s.x(QStringLiteral("DerivedData")); }, kFirst},
        {"a sibling whose name only starts like a root",
         [](Sandbox& s) { return s.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData2/Proj")); },
         kFirst},
        {"a parent that links out of the roots",
         [](Sandbox& s) {
             s.tree.symlink(QStringLiteral("home/Library/Developer/Xcode/Archives/2024-01-01"), s.outside);
             return s.x(QStringLiteral("Archives/2024-01-01/App.xcarchive"));
         },
         kFirst},
        {"dot-dot out of a root",
         [](Sandbox& s) { return s.x(QStringLiteral("DerivedData/../../../../../outside/Proj-abc")); }, kFirst},
        {"under a built-in folder that is itself a link out",
         [](Sandbox& s) {
             QDir(s.x(QStringLiteral("DerivedData"))).removeRecursively();
             s.tree.symlink(QStringLiteral("home/Library/Developer/Xcode/DerivedData"), s.outside);
             return s.x(QStringLiteral("DerivedData/Proj-abc"));
         },
         kFirst},
        {"a link swapped in between the two checks",
         [](Sandbox& s) {
             s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/Archives/2024-01-01/App.xcarchive/I"),
                                   3000);
             return s.x(QStringLiteral("Archives/2024-01-01/App.xcarchive"));
         },
         kSecond},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox s;
        const QString target = c.prepare(s);
        const auto outsideBefore = snapshot(s.outside);
        const auto xcodeBefore = snapshot(s.xcode);
        XcodeDeletion deletion = s.deletion();
        const bool swaps = c.expectedLog == kSecond;
        int hookCalls = 0;
        deletion.setBetweenChecksHook([&](const XcodeDeletionTarget&) {
            ++hookCalls;
            if (!swaps)
                return;
            const QString dated = s.x(QStringLiteral("Archives/2024-01-01"));
            ASSERT_TRUE(QFile::rename(dated, s.tree.path(QStringLiteral("parked"))));
            ASSERT_TRUE(QFile::link(s.outside, dated));
        });
        test::LogCapture log;
        const XcodeDeletionResult result = deletion.run({{QStringLiteral("Loc"), QStringLiteral("Item"), target}});
        EXPECT_EQ(result.deletedItemCount, 0);
        EXPECT_EQ(result.failedItemCount, 1);
        EXPECT_EQ(result.reclaimedSize, 0);
        ASSERT_EQ(result.failures.size(), 1);
        EXPECT_EQ(result.failures[0].itemName, QStringLiteral("Item"));
        EXPECT_TRUE(result.failures[0].message.startsWith(QStringLiteral("You don’t have permission")));
        EXPECT_EQ(log.criticalMessages(), QStringList {c.expectedLog});
        EXPECT_EQ(hookCalls, swaps ? 1 : 0) << "a target refused at once is not even measured";
        EXPECT_EQ(snapshot(s.outside), outsideBefore);
        if (!swaps) {
            EXPECT_EQ(snapshot(s.xcode), xcodeBefore);
        }
    }
}

TEST(XcodeDeletionTest, DeletesLinksAsLinksAndAStuckItemFailsAlone)
{
    Sandbox s;
    const QString project = s.x(QStringLiteral("DerivedData/App-abc"));
    s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DerivedData/App-abc/Build/a.o"), 70000);
    s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DerivedData/App-abc/Index/b"), 12000);
    // Links inside a deleted folder go as links; what they point at stays.
    s.tree.symlink(QStringLiteral("home/Library/Developer/Xcode/DerivedData/App-abc/Build/out"), s.outside);
    s.tree.symlink(QStringLiteral("home/Library/Developer/Xcode/DerivedData/App-abc/keep"),
                   s.outside + QStringLiteral("/keep.txt"));
    const qint64 projectBytes = allocatedBelow(project);
    const QString link = s.tree.symlink(QStringLiteral("home/Library/Developer/Xcode/DerivedData/Outside-xyz"),
                                        s.outside + QStringLiteral("/Proj-abc"));
    const QString doc1
        = s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DocumentationCache/v1/15.0"), 8000);
    const QString doc2
        = s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DocumentationCache/v2/15.0"), 4000);
    const qint64 docBytes = allocatedBelow(doc1) + allocatedBelow(doc2);
    const QString custom = s.tree.writeSizedFile(QStringLiteral("custom/DD/Other-q/x"), 6000);
    const qint64 customBytes = TempTree::allocatedBytes(custom);
    // An item that cannot go all the way fails alone, after as much of it as possible went.
    const QString stuck = s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DerivedData/A-1/f"), 5000);
    s.tree.writeSizedFile(QStringLiteral("home/Library/Developer/Xcode/DerivedData/A-1/g"), 5000);
    const qint64 stuckBytes = allocatedBelow(QFileInfo(stuck).path());
    test::ImmutableFile immutable(stuck);
    const bool pinned = immutable.isActive(); // where the flag cannot be set, A-1 simply goes
    const auto outsideBefore = snapshot(s.outside);

    const QList<XcodeDeletionTarget> targets {
        {QStringLiteral("Derived Data"), QStringLiteral("A"), QFileInfo(stuck).path()},
        {QStringLiteral("Derived Data"), QStringLiteral("App"), project},
        {QStringLiteral("Derived Data"), QStringLiteral("Outside"), link},
        {QStringLiteral("Documentation Cache"), QStringLiteral("Cache from Xcode 15.0"), doc1},
        {QStringLiteral("Documentation Cache"), QStringLiteral("Cache from Xcode 15.0"), doc2},
        {QStringLiteral("Derived Data"), QStringLiteral("Gone"), s.x(QStringLiteral("DerivedData/Gone-1"))},
        {QStringLiteral("Derived Data"), QStringLiteral("Other"), s.tree.path(QStringLiteral("custom/DD/Other-q"))},
    };
    test::LogCapture log;
    const XcodeDeletionResult result = s.deletion({s.tree.path(QStringLiteral("custom/DD"))}).run(targets);
    EXPECT_EQ(result.deletedItemCount, pinned ? 5 : 6)
        << "two paths of one row count as two items; the absent one as none";
    EXPECT_EQ(result.failedItemCount, pinned ? 1 : 0);
    EXPECT_EQ(result.reclaimedSize, projectBytes + docBytes + customBytes + (pinned ? 0 : stuckBytes))
        << "a link frees nothing, nor does a partly removed item on the books";
    EXPECT_FALSE(QFileInfo::exists(s.x(QStringLiteral("DerivedData/A-1/g"))));
    if (pinned) {
        ASSERT_EQ(result.failures.size(), 1);
        EXPECT_EQ(result.failures[0].itemName, QStringLiteral("A"));
        EXPECT_TRUE(result.failures[0].message.contains(QStringLiteral("“f”")))
            << result.failures[0].message.toStdString();
        EXPECT_TRUE(QFileInfo::exists(stuck));
        ASSERT_EQ(log.criticalMessages().size(), 1);
        EXPECT_TRUE(log.criticalMessages()[0].startsWith(
            QStringLiteral("Failed to delete Xcode cleanup item in Derived Data: ")));
    } else {
        EXPECT_TRUE(result.failures.isEmpty());
        EXPECT_TRUE(log.criticalMessages().isEmpty()) << log.criticalMessages().join(QLatin1Char('\n')).toStdString();
    }
    for (const QString& gone : {project, link, doc1, doc2, QFileInfo(custom).path()})
        EXPECT_FALSE(QFileInfo(gone).exists() || QFileInfo(gone).isSymLink()) << gone.toStdString();
    EXPECT_TRUE(QFileInfo::exists(s.x(QStringLiteral("DerivedData")))) << "the root itself stays";
    EXPECT_EQ(snapshot(s.outside), outsideBefore);
}
