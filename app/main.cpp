#include <QApplication>
#include <QIcon>
#include <memory>

#include "core/QuillbayApp.h"
#include "core/views/AppShell.h"
#include "core/views/SymbolIcons.h"
#include "foundation/BuildConfig.h"
#include "foundation/Defaults.h"

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillbay"));
    QApplication::setOrganizationName(QStringLiteral("Quillbay"));
    QApplication::setOrganizationDomain(QStringLiteral("quillbay.app"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLBAY_VERSION));
    QApplication::setDesktopFileName(QStringLiteral(QUILLBAY_BUNDLE_IDENTIFIER));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/quillbay.svg")));
    quillbay::installIconTheme();

    int status = 0;
    {
        quillbay::QuillbayApp app(std::make_unique<quillbay::SettingsDefaults>());
        quillbay::AppShell shell(app);
        shell.openWindow();
        status = QApplication::exec();
        // Stop and drain background work while every store is still alive.
        app.shutdown();
    }
    return status;
}
