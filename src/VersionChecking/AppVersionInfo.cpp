#include "VersionChecking/AppVersionInfo.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace quillbay {

namespace {

AppVersionDecodingError missingKey(QLatin1String key)
{
    return {QStringLiteral("The version check response has no value for \"%1\".").arg(key)};
}

AppVersionDecodingError wrongType(QLatin1String key, QLatin1String expected)
{
    return {QStringLiteral("The version check response's \"%1\" is not %2.").arg(key, expected)};
}

QString jsonString(const QString& text)
{
    return QString::fromUtf8(QJsonDocument(QJsonObject {{QStringLiteral("s"), text}}).toJson(QJsonDocument::Compact))
        .mid(5)
        .chopped(1);
}

} // namespace

std::variant<AppVersionInfo, AppVersionDecodingError> AppVersionInfo::decode(const QByteArray& json)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return AppVersionDecodingError {
            QStringLiteral("The version check response is not valid JSON: %1.").arg(parseError.errorString())};
    if (!document.isObject())
        return AppVersionDecodingError {QStringLiteral("The version check response is not a JSON object.")};
    const QJsonObject object = document.object();

    const QLatin1String urlKey("update_url");
    const QLatin1String forceKey("force_update");
    const QLatin1String availableKey("update_available");
    AppVersionInfo info;
    const QJsonValue url = object.value(urlKey);
    if (url.isUndefined() || url.isNull())
        return missingKey(urlKey);
    if (!url.isString())
        return wrongType(urlKey, QLatin1String("a string"));
    info.updateURL = url.toString();
    for (const auto& [key, field] :
         {std::pair {forceKey, &info.forceUpdate}, std::pair {availableKey, &info.updateAvailable}}) {
        const QJsonValue value = object.value(key);
        if (value.isUndefined() || value.isNull())
            return missingKey(key);
        if (!value.isBool())
            return wrongType(key, QLatin1String("a boolean"));
        *field = value.toBool();
    }
    return info;
}

QByteArray AppVersionInfo::encode() const
{
    // QJsonObject sorts its keys; the wire order is the declared one.
    const auto boolText = [](bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); };
    return QStringLiteral("{\"update_url\":%1,\"force_update\":%2,\"update_available\":%3}")
        .arg(jsonString(updateURL), boolText(forceUpdate), boolText(updateAvailable))
        .toUtf8();
}

} // namespace quillbay
