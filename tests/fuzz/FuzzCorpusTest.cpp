#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "FuzzTargets.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;

// Every saved input (seeds and crashes the fuzzers once found) goes through its target
// again under this build's sanitizers.
TEST(FuzzCorpusTest, SavedInputsRunCleanly)
{
    const QString root = test::sourceDir() + QStringLiteral("/fuzz/corpus");
    ASSERT_TRUE(QDir(root).exists()) << root.toStdString();
    int inputs = 0;
    for (const auto& target : fuzz::allTargets) {
        const QDir dir(root + QLatin1Char('/') + QLatin1String(target.name));
        ASSERT_TRUE(dir.exists()) << "no saved inputs for " << target.name;
        for (const QString& name : dir.entryList(QDir::Files)) {
            SCOPED_TRACE(std::string(target.name) + "/" + name.toStdString());
            QFile file(dir.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            target.run(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                       static_cast<std::size_t>(bytes.size()));
            ++inputs;
        }
    }
    EXPECT_GT(inputs, 0);
}
