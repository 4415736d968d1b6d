#include <QApplication>
#include <QStandardPaths>

#include "core/views/SymbolIcons.h"

namespace quillbay {
void renderXcodeReleasesScreenshots(const QString& outDir);
}

// Renders the releases screen states to PNG files in the folder given (default: ./shots).
int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    quillbay::installIconTheme();
    quillbay::renderXcodeReleasesScreenshots(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("shots"));
    return 0;
}
