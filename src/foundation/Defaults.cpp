#include "foundation/Defaults.h"

#include <QSettings>
#include <limits>
#include <optional>

namespace quillbay {

namespace {

// INI files store every scalar as text, so a typed read has to accept the text forms
// that QSettings writes for the types we write, and nothing looser.
std::optional<bool> asBool(const QVariant& v)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString();
        if (s == QLatin1String("true"))
            return true;
        if (s == QLatin1String("false"))
            return false;
    }
    return std::nullopt;
}

std::optional<qint64> asInteger(const QVariant& v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::Long:
        return v.toLongLong();
    case QMetaType::ULongLong: {
        const qulonglong u = v.toULongLong();
        if (u > static_cast<qulonglong>(std::numeric_limits<qint64>::max()))
            return std::nullopt;
        return static_cast<qint64>(u);
    }
    case QMetaType::QString: {
        bool ok = false;
        const qint64 n = v.toString().toLongLong(&ok);
        if (ok)
            return n;
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace

bool Defaults::boolValue(const QString& key, bool fallback) const
{
    return asBool(value(key)).value_or(fallback);
}

qint64 Defaults::integerValue(const QString& key, qint64 fallback) const
{
    return asInteger(value(key)).value_or(fallback);
}

QByteArray Defaults::dataValue(const QString& key) const
{
    const QVariant v = value(key);
    if (v.typeId() == QMetaType::QByteArray)
        return v.toByteArray();
    return {};
}

SettingsDefaults::SettingsDefaults()
    : m_settings(std::make_unique<QSettings>())
{
}

SettingsDefaults::SettingsDefaults(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
}

SettingsDefaults::~SettingsDefaults() = default;

QVariant SettingsDefaults::value(const QString& key) const
{
    return m_settings->value(key);
}

void SettingsDefaults::setValue(const QString& key, const QVariant& value)
{
    m_settings->setValue(key, value);
}

void SettingsDefaults::remove(const QString& key)
{
    m_settings->remove(key);
}

void SettingsDefaults::sync()
{
    m_settings->sync();
}

} // namespace quillbay
