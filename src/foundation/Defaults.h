#pragma once

#include <QString>
#include <QVariant>
#include <memory>

class QSettings;

namespace quillbay {

// The persistent key-value store behind every stored choice. On macOS QSettings is
// the user defaults domain itself; elsewhere it is an INI-style file. Values come back
// as stored, so readers decide what a wrongly typed value means (usually: the default).
class Defaults
{
public:
    virtual ~Defaults() = default;

    virtual QVariant value(const QString& key) const = 0;
    virtual void setValue(const QString& key, const QVariant& value) = 0;
    virtual void remove(const QString& key) = 0;

    bool contains(const QString& key) const { return value(key).isValid(); }

    // A Bool read as an object: a missing or non-boolean value gives the fallback, so a
    // stored false is told apart from a missing key.
    bool boolValue(const QString& key, bool fallback) const;
    // An integer read as an object; anything that is not a whole number gives the fallback.
    qint64 integerValue(const QString& key, qint64 fallback) const;
    // Bytes, empty when missing or of another type.
    QByteArray dataValue(const QString& key) const;
};

// QSettings-backed defaults. With a path it uses that INI file (tests, portable runs);
// without one, the application's native settings.
class SettingsDefaults final : public Defaults
{
public:
    SettingsDefaults();
    explicit SettingsDefaults(const QString& iniPath);
    ~SettingsDefaults() override;

    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;
    void remove(const QString& key) override;

    // Writes pending changes to disk now (tests that reopen the file use it).
    void sync();

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace quillbay
