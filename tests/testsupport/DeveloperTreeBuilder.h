#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

namespace quillbay::test {

// Builds a realistic Library/Developer tree under a given folder: dated archive folders
// with real Info.plist files (XML or binary), device support folders with the names real
// machines hold, derived data folders with hashed names and an info.plist, documentation
// caches, device logs and preview caches. Every file's blocks are really allocated, so
// sizes on disk are what a scan must report.
class DeveloperTreeBuilder
{
public:
    enum class PlistFormat { xml, binary };

    struct Archive
    {
        QString date = QStringLiteral("2024-01-15"); // the dated folder
        QString bundleFileName = QStringLiteral("App 1-15-24, 10.00 AM.xcarchive");
        std::optional<QString> name = QStringLiteral("App");
        std::optional<QDateTime> creationDate = QDateTime(QDate(2024, 1, 15), QTime(10, 0), Qt::UTC);
        std::optional<QString> bundleIdentifier = QStringLiteral("com.example.app");
        std::optional<QString> shortVersion = QStringLiteral("1.2");
        std::optional<QString> build = QStringLiteral("45");
        // Absent: no "Distributions" key. Each element is one distribution; an empty text
        // gives one without an "uploadEvent".
        std::optional<QStringList> uploadStates;
        PlistFormat format = PlistFormat::xml;
        qint64 payloadBytes = 8192;
    };

    // `developerFolder` is created with its "Xcode" folder.
    explicit DeveloperTreeBuilder(const QString& developerFolder);

    QString developerFolder() const { return m_developer; }
    QString xcodeFolder() const { return m_developer + QStringLiteral("/Xcode"); }

    // Returns the .xcarchive path.
    QString addArchive(const Archive& archive);
    QString addArchiveWithInfoPlist(const QString& date, const QString& bundleFileName, const QByteArray& infoPlist);
    // `osFolder` is e.g. "iOS DeviceSupport"; returns the folder path.
    QString addDeviceSupport(const QString& osFolder, const QString& name, qint64 bytes = 4096);
    // A "<Project>-<28 letters>" folder with an info.plist naming the workspace; returns it.
    QString addDerivedData(const QString& projectName,
                           const QString& workspacePath,
                           qint64 bytes = 4096,
                           PlistFormat format = PlistFormat::xml,
                           const QString& root = {});
    QString addDocumentationCache(const QString& format, const QString& version, qint64 bytes = 4096);
    QString addDeviceLog(const QString& fileName, qint64 bytes = 4096);
    QString addPreview(const QString& name, qint64 bytes = 4096);

    // Plain helpers on paths relative to the Developer folder; parents are created.
    QString mkdir(const QString& relative);
    QString writeFile(const QString& relative, qint64 bytes);
    QString writeBytes(const QString& relative, const QByteArray& bytes);
    QString symlink(const QString& relative, const QString& target);
    QString hardlink(const QString& relative, const QString& existingRelative);

    // A derived-data style hash: 28 lowercase letters, the same for the same seed.
    static QString hashName(std::uint64_t seed);
    static QByteArray archiveInfoPlist(const Archive& archive);
    static QByteArray derivedDataInfoPlist(const QString& workspacePath, PlistFormat format);

    // Fills a folder with `fileCount` small files in nested folders, like a build's
    // intermediates (some empty, hard links and links among them). Returns the number of
    // files made; `bytes`, when given, receives their allocated total, every link counted.
    static int fillBuildProducts(const QString& folder, int fileCount, std::uint64_t seed, qint64* bytes = nullptr);

private:
    QString m_developer;
};

// Runs the enclosed code with the effective user and group of "nobody", so that folders
// with mode 0 really cannot be listed even when the tests run as root. The process's
// threads all switch together and switch back at the end of the scope. The tree must be
// traversable by others (mode 0755 up to its root).
class ReducedPrivileges
{
public:
    ReducedPrivileges();
    ~ReducedPrivileges();
    ReducedPrivileges(const ReducedPrivileges&) = delete;
    ReducedPrivileges& operator=(const ReducedPrivileges&) = delete;

    // Whether an unreadable folder can be made at all (as a normal user it always can;
    // as root only when the effective user can be changed).
    static bool available();
    bool active() const { return m_active; }

private:
    bool m_active = false;
};

} // namespace quillbay::test
