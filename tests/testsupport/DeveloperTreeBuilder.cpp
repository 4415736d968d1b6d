#include "testsupport/DeveloperTreeBuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <stdexcept>

#include <fcntl.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

namespace {

constexpr qint64 referenceDateOffsetSeconds = 978307200; // 2001-01-01 UTC

std::uint64_t splitMix(std::uint64_t& state)
{
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

void require(bool ok, const QString& what)
{
    if (!ok)
        throw std::runtime_error(what.toStdString());
}

void makePath(const QString& path)
{
    require(QDir().mkpath(path), QStringLiteral("cannot create ") + path);
}

// Writes real bytes, so that the blocks are allocated and not sparse.
void writeAllocated(const QString& path, qint64 bytes)
{
    static const QByteArray chunk(65536, 'q');
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(fd >= 0, QStringLiteral("cannot write ") + path);
    qint64 left = bytes;
    while (left > 0) {
        const auto n = ::write(fd, chunk.constData(), static_cast<size_t>(std::min<qint64>(left, chunk.size())));
        require(n > 0, QStringLiteral("short write to ") + path);
        left -= n;
    }
    ::close(fd);
}

QByteArray serialize(plist_t root, DeveloperTreeBuilder::PlistFormat format)
{
    char* data = nullptr;
    uint32_t length = 0;
    if (format == DeveloperTreeBuilder::PlistFormat::binary)
        plist_to_bin(root, &data, &length);
    else
        plist_to_xml(root, &data, &length);
    QByteArray bytes(data, static_cast<qsizetype>(length));
    free(data);
    plist_free(root);
    return bytes;
}

void setString(plist_t dict, const char* key, const std::optional<QString>& value)
{
    if (value)
        plist_dict_set_item(dict, key, plist_new_string(value->toUtf8().constData()));
}

} // namespace

DeveloperTreeBuilder::DeveloperTreeBuilder(const QString& developerFolder)
    : m_developer(QDir::cleanPath(developerFolder))
{
    makePath(xcodeFolder());
}

QString DeveloperTreeBuilder::mkdir(const QString& relative)
{
    const QString path = m_developer + QLatin1Char('/') + relative;
    makePath(path);
    return path;
}

QString DeveloperTreeBuilder::writeFile(const QString& relative, qint64 bytes)
{
    const QString path = m_developer + QLatin1Char('/') + relative;
    makePath(QFileInfo(path).path());
    writeAllocated(path, bytes);
    return path;
}

QString DeveloperTreeBuilder::writeBytes(const QString& relative, const QByteArray& bytes)
{
    const QString path = m_developer + QLatin1Char('/') + relative;
    makePath(QFileInfo(path).path());
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
            QStringLiteral("cannot write ") + path);
    return path;
}

QString DeveloperTreeBuilder::symlink(const QString& relative, const QString& target)
{
    const QString path = m_developer + QLatin1Char('/') + relative;
    makePath(QFileInfo(path).path());
    require(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()) == 0,
            QStringLiteral("cannot link ") + path);
    return path;
}

QString DeveloperTreeBuilder::hardlink(const QString& relative, const QString& existingRelative)
{
    const QString path = m_developer + QLatin1Char('/') + relative;
    makePath(QFileInfo(path).path());
    const QString existing = m_developer + QLatin1Char('/') + existingRelative;
    require(::link(QFile::encodeName(existing).constData(), QFile::encodeName(path).constData()) == 0,
            QStringLiteral("cannot hard-link ") + path);
    return path;
}

QString DeveloperTreeBuilder::hashName(std::uint64_t seed)
{
    std::uint64_t state = seed * 7919 + 17;
    QString name;
    for (int i = 0; i < 28; ++i)
        name.append(QLatin1Char(static_cast<char>('a' + splitMix(state) % 26)));
    return name;
}

QByteArray DeveloperTreeBuilder::archiveInfoPlist(const Archive& archive)
{
    plist_t root = plist_new_dict();
    plist_t properties = plist_new_dict();
    plist_dict_set_item(properties, "ApplicationPath", plist_new_string("Applications/App.app"));
    setString(properties, "CFBundleIdentifier", archive.bundleIdentifier);
    setString(properties, "CFBundleShortVersionString", archive.shortVersion);
    setString(properties, "CFBundleVersion", archive.build);
    plist_dict_set_item(properties, "SigningIdentity", plist_new_string("Apple Development: Example (ABCDE12345)"));
    plist_t architectures = plist_new_array();
    plist_array_append_item(architectures, plist_new_string("arm64"));
    plist_dict_set_item(properties, "Architectures", architectures);
    plist_dict_set_item(root, "ApplicationProperties", properties);
    plist_dict_set_item(root, "ArchiveVersion", plist_new_uint(2));
    if (archive.creationDate) {
        const qint64 seconds = archive.creationDate->toSecsSinceEpoch() - referenceDateOffsetSeconds;
        plist_dict_set_item(root, "CreationDate", plist_new_date(static_cast<int32_t>(seconds), 0));
    }
    setString(root, "Name", archive.name);
    setString(root, "SchemeName", archive.name);
    if (archive.uploadStates) {
        plist_t distributions = plist_new_array();
        for (const QString& state : *archive.uploadStates) {
            plist_t distribution = plist_new_dict();
            plist_dict_set_item(distribution, "destination", plist_new_string("upload"));
            if (!state.isEmpty()) {
                plist_t uploadEvent = plist_new_dict();
                plist_dict_set_item(uploadEvent, "state", plist_new_string(state.toUtf8().constData()));
                plist_dict_set_item(distribution, "uploadEvent", uploadEvent);
            }
            plist_array_append_item(distributions, distribution);
        }
        plist_dict_set_item(root, "Distributions", distributions);
    }
    return serialize(root, archive.format);
}

QByteArray DeveloperTreeBuilder::derivedDataInfoPlist(const QString& workspacePath, PlistFormat format)
{
    plist_t root = plist_new_dict();
    plist_dict_set_item(root, "LastAccessedDate", plist_new_date(757000000, 0));
    plist_dict_set_item(root, "WorkspacePath", plist_new_string(workspacePath.toUtf8().constData()));
    return serialize(root, format);
}

QString DeveloperTreeBuilder::addArchiveWithInfoPlist(const QString& date,
                                                      const QString& bundleFileName,
                                                      const QByteArray& infoPlist)
{
    const QString relative = QStringLiteral("Xcode/Archives/") + date + QLatin1Char('/') + bundleFileName;
    writeBytes(relative + QStringLiteral("/Info.plist"), infoPlist);
    return m_developer + QLatin1Char('/') + relative;
}

QString DeveloperTreeBuilder::addArchive(const Archive& archive)
{
    const QString path = addArchiveWithInfoPlist(archive.date, archive.bundleFileName, archiveInfoPlist(archive));
    const QString relative = path.mid(m_developer.size() + 1);
    writeFile(relative + QStringLiteral("/Products/Applications/App.app/App"), archive.payloadBytes);
    writeFile(relative + QStringLiteral("/dSYMs/App.app.dSYM/Contents/Resources/DWARF/App"), archive.payloadBytes / 2);
    return path;
}

QString DeveloperTreeBuilder::addDeviceSupport(const QString& osFolder, const QString& name, qint64 bytes)
{
    const QString relative = QStringLiteral("Xcode/") + osFolder + QLatin1Char('/') + name;
    writeFile(relative + QStringLiteral("/Info.plist"), 512);
    writeFile(relative + QStringLiteral("/Symbols/System/Library/Caches/dyld/dyld_shared_cache_arm64e"), bytes);
    return m_developer + QLatin1Char('/') + relative;
}

QString DeveloperTreeBuilder::addDerivedData(
    const QString& projectName, const QString& workspacePath, qint64 bytes, PlistFormat format, const QString& root)
{
    static std::uint64_t counter = 0;
    const QString base = root.isEmpty() ? xcodeFolder() + QStringLiteral("/DerivedData") : root;
    const QString folder = base + QLatin1Char('/') + projectName + QLatin1Char('-') + hashName(++counter);
    makePath(folder + QStringLiteral("/Build/Intermediates.noindex"));
    QFile info(folder + QStringLiteral("/info.plist"));
    const QByteArray plist = derivedDataInfoPlist(workspacePath, format);
    require(info.open(QIODevice::WriteOnly) && info.write(plist) == plist.size(), QStringLiteral("info.plist"));
    info.close();
    makePath(folder + QStringLiteral("/Build/Products/Debug-iphonesimulator"));
    writeAllocated(folder + QStringLiteral("/Build/Products/Debug-iphonesimulator/App"), bytes);
    return folder;
}

QString DeveloperTreeBuilder::addDocumentationCache(const QString& format, const QString& version, qint64 bytes)
{
    const QString relative = QStringLiteral("Xcode/DocumentationCache/") + format + QLatin1Char('/') + version;
    writeFile(relative + QStringLiteral("/index.db"), bytes);
    return m_developer + QLatin1Char('/') + relative;
}

QString DeveloperTreeBuilder::addDeviceLog(const QString& fileName, qint64 bytes)
{
    return writeFile(QStringLiteral("Xcode/iOS Device Logs/") + fileName, bytes);
}

QString DeveloperTreeBuilder::addPreview(const QString& name, qint64 bytes)
{
    const QString relative = QStringLiteral("Xcode/UserData/Previews/") + name;
    writeFile(relative + QStringLiteral("/Simulator Devices/device_set.plist"), bytes);
    return m_developer + QLatin1Char('/') + relative;
}

int DeveloperTreeBuilder::fillBuildProducts(const QString& folder, int fileCount, std::uint64_t seed, qint64* bytes)
{
    std::uint64_t state = seed;
    qint64 total = 0;
    int made = 0;
    int target = 0;
    QString lastFile;
    while (made < fileCount) {
        // One target: Objects-normal/arm64 with 20 to 80 object files, sources in a
        // second folder one level up.
        const QString targetDir = folder
            + QStringLiteral("/Build/Intermediates.noindex/Target%1.build/Debug/").arg(target++)
            + QStringLiteral("Objects-normal/arm64");
        makePath(targetDir);
        const int inTarget = 20 + static_cast<int>(splitMix(state) % 61);
        for (int i = 0; i < inTarget && made < fileCount; ++i, ++made) {
            const QString path = targetDir + QStringLiteral("/File%1.o").arg(i);
            const std::uint64_t r = splitMix(state);
            if (!lastFile.isEmpty() && r % 211 == 0) {
                require(::link(QFile::encodeName(lastFile).constData(), QFile::encodeName(path).constData()) == 0,
                        QStringLiteral("link"));
            } else if (r % 307 == 1) {
                require(::symlink("../File0.o", QFile::encodeName(path).constData()) == 0, QStringLiteral("symlink"));
                continue; // a link is not a file of its own
            } else {
                writeAllocated(path, r % 4 == 0 ? 0 : static_cast<qint64>(r % 12000));
                lastFile = path;
            }
            struct stat st;
            require(::lstat(QFile::encodeName(path).constData(), &st) == 0, QStringLiteral("stat"));
            total += static_cast<qint64>(st.st_blocks) * 512;
        }
    }
    if (bytes)
        *bytes = total;
    return made;
}

ReducedPrivileges::ReducedPrivileges()
{
    if (geteuid() != 0)
        return;
    // Group first: once the user is no longer root the group cannot change.
    m_active = setegid(65534) == 0 && seteuid(65534) == 0;
}

ReducedPrivileges::~ReducedPrivileges()
{
    if (!m_active)
        return;
    if (seteuid(0) != 0 || setegid(0) != 0)
        std::abort(); // the rest of the run would see a different machine
}

bool ReducedPrivileges::available()
{
    if (geteuid() != 0)
        return true;
    ReducedPrivileges probe;
    return probe.active();
}

} // namespace quillbay::test
