#include <gtest/gtest.h>

#ifdef QUILLBAY_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

#include <QStandardPaths>

// Every test binary runs with an event loop available, offscreen, and with the
// standard locations redirected so that no test can touch the real user's files.
int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    TestApplication application(argc, argv);
    TestApplication::setApplicationName(QStringLiteral("QuillbayTests"));
    TestApplication::setOrganizationName(QStringLiteral("QuillbayTests"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
