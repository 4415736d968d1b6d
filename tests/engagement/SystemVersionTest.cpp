#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "platform/SystemVersion.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

TEST(SystemVersionTest, ReadsTheVersionFile)
{
    struct Case
    {
        const char* name;
        QByteArray content; // empty: no file at all
        QString expected;
    };
    const Case cases[] = {
        {"pretty name",
         "NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n",
         u"Debian GNU/Linux 12 (bookworm)"_s},
        {"name and version", "NAME='Alpine Linux'\nVERSION_ID=3.20.1\n", u"Alpine Linux 3.20.1"_s},
        {"escapes and comments", "# written by hand\nPRETTY_NAME=\"Say \\\"hi\\\" OS\"\n", u"Say \"hi\" OS"_s},
        {"binary junk", QByteArray("\x00\xff\xfe=\x01", 5), QSysInfo::prettyProductName()},
        {"no file", {}, QSysInfo::prettyProductName()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"os-release"_s);
        if (!c.content.isEmpty()) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(c.content);
        }
        EXPECT_EQ(operatingSystemVersion(path), c.expected);
    }
    EXPECT_FALSE(operatingSystemVersion().isEmpty());
}
