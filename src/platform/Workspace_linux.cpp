#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <cerrno>
#include <cstring>

#include "platform/Workspace.h"

namespace quillbay {

namespace {

class LinuxWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl& url) override { return QDesktopServices::openUrl(url); }

    bool revealFiles(const QStringList& paths) override
    {
        if (paths.isEmpty())
            return false;
        QStringList uris;
        for (const QString& path : paths)
            uris << QUrl::fromLocalFile(path).toString();
        // The freedesktop file-manager interface selects the items; without a session
        // bus or a file manager that speaks it, open the folder that holds the first one.
        const QString gdbus = QStandardPaths::findExecutable(QStringLiteral("gdbus"));
        if (!gdbus.isEmpty() && !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
            const QString array = QStringLiteral("['") + uris.join(QStringLiteral("','")) + QStringLiteral("']");
            const int rc
                = QProcess::execute(gdbus,
                                    {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                                     QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("--object-path"),
                                     QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("--method"),
                                     QStringLiteral("org.freedesktop.FileManager1.ShowItems"), array, QString()});
            if (rc == 0)
                return true;
        }
        return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(paths.first()).absolutePath()));
    }

    std::optional<QString> applicationPath(const QString& identifier) override
    {
        const QString desktopFile
            = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, identifier + QStringLiteral(".desktop"));
        if (!desktopFile.isEmpty())
            return desktopFile;
        const QString executable = QStandardPaths::findExecutable(identifier);
        if (!executable.isEmpty())
            return executable;
        return std::nullopt;
    }

    QStringList runningApplicationIdentifiers() override
    {
        QStringList names;
        const QDir proc(QStringLiteral("/proc"));
        for (const QString& entry : proc.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            bool numeric = false;
            entry.toLongLong(&numeric);
            if (!numeric)
                continue;
            QFile comm(proc.filePath(entry) + QStringLiteral("/comm"));
            if (comm.open(QIODevice::ReadOnly))
                names << QString::fromUtf8(comm.readAll()).trimmed();
        }
        names.removeDuplicates();
        return names;
    }

    bool openTerminal(const QString& folder) override
    {
        for (const char* candidate : {"x-terminal-emulator", "gnome-terminal", "konsole", "xfce4-terminal", "xterm"}) {
            const QString program = QStandardPaths::findExecutable(QString::fromLatin1(candidate));
            if (!program.isEmpty() && QProcess::startDetached(program, {}, folder))
                return true;
        }
        return false;
    }
};

} // namespace

std::optional<QString> Workspace::openApplication(const QString& applicationPath)
{
    const QFileInfo info(applicationPath);
    if (!info.exists())
        return QString::fromLocal8Bit(std::strerror(ENOENT));
    // A desktop entry is started the way the desktop starts it; anything else is run.
    QProcess process;
    if (applicationPath.endsWith(QLatin1String(".desktop"))) {
        process.setProgram(QStringLiteral("gio"));
        process.setArguments({QStringLiteral("launch"), applicationPath});
    } else {
        process.setProgram(applicationPath);
    }
    qint64 pid = 0;
    if (!process.startDetached(&pid))
        return process.errorString();
    return std::nullopt;
}

std::unique_ptr<Workspace> Workspace::createSystem()
{
    return std::make_unique<LinuxWorkspace>();
}

} // namespace quillbay
