#include "xcode_cleanup/ArchiveReader.h"

#include <QDebug>
#include <QFileInfo>
#include <QLocale>

#include "foundation/Log.h"
#include "xcode_cleanup/PropertyList.h"

namespace quillbay {

namespace {

SubmissionStatus submissionStatus(PropertyList::Node distributions)
{
    if (!PropertyList::isArray(distributions))
        return SubmissionStatus::undefined;
    const int count = PropertyList::arraySize(distributions);
    for (int i = 0; i < count; ++i) {
        if (!PropertyList::isDictionary(PropertyList::arrayItem(distributions, i)))
            return SubmissionStatus::undefined;
    }
    for (int i = 0; i < count; ++i) {
        const PropertyList::Node uploadEvent
            = PropertyList::item(PropertyList::arrayItem(distributions, i), "uploadEvent");
        if (PropertyList::stringValue(PropertyList::item(uploadEvent, "state")) == QStringLiteral("success"))
            return SubmissionStatus::success;
    }
    return SubmissionStatus::failure;
}

void logMissing(const QString& text, const QString& path)
{
    qCCritical(logApp).noquote() << text.arg(privateText(path));
}

} // namespace

std::optional<XcodeFileProperties> readArchive(const QString& path)
{
    if (QFileInfo(path).suffix() != QStringLiteral("xcarchive"))
        return std::nullopt;
    const QString plistPath = path + QStringLiteral("/Info.plist");
    const std::optional<PropertyList> list = PropertyList::readFile(plistPath);
    if (!list || !PropertyList::isDictionary(list->root())) {
        logMissing(QStringLiteral("XcodeFileManager: 无法打开存档中的 Info.plist 文件: %1"), plistPath);
        return std::nullopt;
    }
    const PropertyList::Node root = list->root();

    ArchiveFile archive;
    const auto name = PropertyList::stringValue(PropertyList::item(root, "Name"));
    if (!name) {
        qDebug().noquote() << QStringLiteral("XcodeFileManager: 无法从存档中读取到项目名称: ") + privateText(path);
        return std::nullopt;
    }
    const auto date = PropertyList::dateValue(PropertyList::item(root, "CreationDate"));
    if (!date) {
        qDebug().noquote() << QStringLiteral("XcodeFileManager: 无法从存档中读取到构建时间: ") + privateText(path);
        return std::nullopt;
    }
    archive.projectName = *name;
    archive.date = *date;
    archive.submissionStatus = submissionStatus(PropertyList::item(root, "Distributions"));

    const PropertyList::Node properties = PropertyList::item(root, "ApplicationProperties");
    if (!PropertyList::isDictionary(properties)) {
        logMissing(QStringLiteral(
                       "XcodeFileManager: 无法从存档的 Info.plist 文件中获取 Ap\u200b\u200bplicationProperties: %1"),
                   path);
        return std::nullopt;
    }
    const auto bundleName = PropertyList::stringValue(PropertyList::item(properties, "CFBundleIdentifier"));
    if (!bundleName) {
        logMissing(QStringLiteral("XcodeFileManager: 无法从存档中获取包名称: %1"), path);
        return std::nullopt;
    }
    const auto versionString = PropertyList::stringValue(PropertyList::item(properties, "CFBundleShortVersionString"));
    if (!versionString) {
        logMissing(QStringLiteral("XcodeFileManager: 无法从归档文件中获取包版本: %1"), path);
        return std::nullopt;
    }
    const auto build = PropertyList::stringValue(PropertyList::item(properties, "CFBundleVersion"));
    if (!build) {
        logMissing(QStringLiteral("XcodeFileManager: 无法从存档中获取包构建: %1"), path);
        return std::nullopt;
    }
    archive.bundleName = *bundleName;
    archive.versionString = *versionString;
    archive.build = *build;
    archive.version = Version::parse(*versionString);
    archive.location = path;

    XcodeFileProperties item;
    item.label = archive.versionString + QStringLiteral(" (") + archive.build + QLatin1Char(')');
    item.info = QLocale().toString(archive.date.toLocalTime(), QLocale::ShortFormat);
    item.tooltip = (item.label + QLatin1Char(' ') + item.info).trimmed();
    if (archive.submissionStatus == SubmissionStatus::success)
        item.icon = Icon::system(QStringLiteral("checkmark"));
    else if (archive.submissionStatus == SubmissionStatus::failure)
        item.icon = Icon::system(QStringLiteral("xmark"));
    item.paths = {path};
    item.record = std::move(archive);
    return item;
}

} // namespace quillbay
