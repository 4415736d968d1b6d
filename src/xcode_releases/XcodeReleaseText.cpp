#include "xcode_releases/XcodeReleaseText.h"

#include <QDate>
#include <QRegularExpression>

namespace quillbay {

namespace {

const QString kAppleSiliconSuffix = QStringLiteral(" (Apple Silicon)");

QString strippedName(const XcodeRelease& release)
{
    QString name = release.name;
    return name.remove(kAppleSiliconSuffix, Qt::CaseSensitive);
}

const std::optional<QList<XcodeRelease::SDKInfo>>* sdkList(const XcodeRelease& release, Column column)
{
    if (!release.sdks)
        return nullptr;
    switch (column) {
    case Column::macOSSDK:
        return &release.sdks->macOS;
    case Column::iOSSDK:
        return &release.sdks->iOS;
    case Column::watchOSSDK:
        return &release.sdks->watchOS;
    case Column::tvOSSDK:
        return &release.sdks->tvOS;
    case Column::visionOSSDK:
        return &release.sdks->visionOS;
    default:
        return nullptr;
    }
}

QString sdkWord(Column column)
{
    switch (column) {
    case Column::macOSSDK:
        return QStringLiteral("macOS");
    case Column::iOSSDK:
        return QStringLiteral("iOS");
    case Column::watchOSSDK:
        return QStringLiteral("watchOS");
    case Column::tvOSSDK:
        return QStringLiteral("tvOS");
    case Column::visionOSSDK:
        return QStringLiteral("visionOS");
    default:
        return {};
    }
}

const XcodeRelease::SDKInfo* firstSDK(const XcodeRelease& release, Column column)
{
    const auto* list = sdkList(release, column);
    if (!list || !*list || (*list)->isEmpty())
        return nullptr;
    return &(*list)->first();
}

const XcodeRelease::CompilerInfo* firstSwift(const XcodeRelease& release)
{
    if (!release.compilers || !release.compilers->swift || release.compilers->swift->isEmpty())
        return nullptr;
    return &release.compilers->swift->first();
}

QString sdkText(const XcodeRelease& release, Column column, bool longForm)
{
    const XcodeRelease::SDKInfo* sdk = firstSDK(release, column);
    if (!sdk)
        return {};
    QString text = sdkWord(column);
    if (sdk->number)
        text += u' ' + *sdk->number;
    if (longForm && sdk->build)
        text += QStringLiteral(" (") + *sdk->build + u')';
    return text;
}

QString linkText(const std::optional<XcodeRelease::LinkInfo> XcodeRelease::Links::*link, const XcodeRelease& release)
{
    if (!release.links || !(*release.links.*link))
        return {};
    return (*release.links.*link)->url;
}

// The locale's long date pattern without the weekday and with the short month name:
// the nearest Qt has to a "day, abbreviated month, year" template.
QString dateFormatFor(const QLocale& locale)
{
    thread_local QString cachedLocaleName;
    thread_local QString cachedFormat;
    const QString localeName = locale.name();
    if (!cachedFormat.isEmpty() && cachedLocaleName == localeName)
        return cachedFormat;
    static const QRegularExpression weekday(QStringLiteral("d{3,4}[,،\\s]*"));
    QString format = locale.dateFormat(QLocale::LongFormat);
    format.remove(weekday);
    format.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    while (!format.isEmpty() && (format.back().isSpace() || format.back() == u','))
        format.chop(1);
    cachedLocaleName = localeName;
    cachedFormat = format;
    return format;
}

} // namespace

QString releaseLabel(const XcodeRelease::ReleaseMap& release)
{
    if (release.isEmpty())
        return QStringLiteral("unknown");
    const auto& [key, value] = release.first();
    const QString lowered = key.toLower();
    QString name;
    if (lowered == u"release")
        name = QStringLiteral("Release");
    else if (lowered == u"beta")
        name = QStringLiteral("Beta");
    else if (lowered == u"rc")
        name = QStringLiteral("RC");
    switch (value.kind) {
    case XcodeRelease::BoolOrInt::Kind::boolean:
        return name;
    case XcodeRelease::BoolOrInt::Kind::integer:
        return name + u' ' + QString::number(value.intValue);
    case XcodeRelease::BoolOrInt::Kind::unknown:
        break;
    }
    return QStringLiteral("unknown");
}

QString releaseDateText(const XcodeRelease::DateInfo& date, const QLocale& locale)
{
    // Far outside any calendar's reach; also keeps the int conversions below exact.
    constexpr qint64 limit = 1'000'000;
    const auto outside = [](qint64 value, qint64 bound) { return value < -bound || value > bound; };
    if (outside(date.year, limit) || outside(date.month, limit) || outside(date.day, limit * 400))
        return {};
    const QDate start(static_cast<int>(date.year), 1, 1);
    if (!start.isValid())
        return {};
    const QDate resolved = start.addMonths(static_cast<int>(date.month - 1)).addDays(date.day - 1);
    if (!resolved.isValid())
        return {};
    return locale.toString(resolved, dateFormatFor(locale));
}

QString cellText(const XcodeRelease& release, Column column, bool expanded, const QLocale& locale)
{
    switch (column) {
    case Column::version: {
        QString text = strippedName(release);
        if (!release.version)
            return text;
        text += u' ' + release.version->number;
        if (expanded)
            text += QStringLiteral(" (") + release.version->build + u')';
        return text;
    }
    case Column::release:
        return release.version ? releaseLabel(release.version->release) : QString();
    case Column::date:
        return releaseDateText(release.date, locale);
    case Column::required:
        return QStringLiteral("macOS ") + release.requires_ + u'+';
    case Column::swift: {
        const XcodeRelease::CompilerInfo* swift = firstSwift(release);
        if (!swift)
            return {};
        if (expanded && swift->build)
            return swift->number + QStringLiteral(" (") + *swift->build + u')';
        return swift->number;
    }
    case Column::macOSSDK:
    case Column::iOSSDK:
    case Column::watchOSSDK:
    case Column::tvOSSDK:
        return sdkText(release, column, expanded);
    case Column::visionOSSDK:
        // The one SDK column without a long form.
        return sdkText(release, column, false);
    case Column::download:
        return linkText(&XcodeRelease::Links::download, release);
    case Column::releaseNotes:
        return linkText(&XcodeRelease::Links::notes, release);
    }
    return {};
}

std::optional<QString> buildText(const XcodeRelease& release, Column column)
{
    std::optional<QString> build;
    if (column == Column::swift) {
        if (const XcodeRelease::CompilerInfo* swift = firstSwift(release))
            build = swift->build;
    } else if (const XcodeRelease::SDKInfo* sdk = firstSDK(release, column)) {
        build = sdk->build;
    }
    if (build && build->isEmpty())
        return std::nullopt;
    return build;
}

bool isAppleSiliconOnly(const XcodeRelease& release)
{
    if (release.links && release.links->download && release.links->download->architectures) {
        const QStringList& architectures = *release.links->download->architectures;
        return architectures.contains(QStringLiteral("arm64")) && !architectures.contains(QStringLiteral("x86_64"));
    }
    return release.name.endsWith(kAppleSiliconSuffix);
}

bool isFinalRelease(const XcodeRelease& release)
{
    if (!release.version)
        return false;
    for (const auto& [key, value] : release.version->release) {
        if (key == u"release")
            return value.kind == XcodeRelease::BoolOrInt::Kind::boolean && value.boolValue;
    }
    return false;
}

} // namespace quillbay
