#include <QFile>
#include <QHash>
#include <QSysInfo>

#include "platform/SystemVersion.h"

namespace quillbay {

namespace {

// os-release values may be quoted with " or ' and carry backslash escapes.
QString unquoted(QString value)
{
    value = value.trimmed();
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') && value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) == u'\\' && i + 1 < value.size())
            ++i;
        out += value.at(i);
    }
    return out;
}

} // namespace

QString operatingSystemVersion()
{
    if (QFile::exists(QStringLiteral("/etc/os-release")))
        return operatingSystemVersion(QStringLiteral("/etc/os-release"));
    return operatingSystemVersion(QStringLiteral("/usr/lib/os-release"));
}

QString operatingSystemVersion(const QString& versionFilePath)
{
    QFile file(versionFilePath);
    QHash<QString, QString> fields;
    if (file.open(QIODevice::ReadOnly)) {
        // A version file is a few hundred bytes; anything far larger is not one.
        const QList<QByteArray> lines = file.read(64 * 1024).split('\n');
        for (const QByteArray& raw : lines) {
            const QString line = QString::fromUtf8(raw).trimmed();
            const qsizetype equals = line.indexOf(u'=');
            if (line.startsWith(u'#') || equals <= 0)
                continue;
            fields.insert(line.left(equals), unquoted(line.mid(equals + 1)));
        }
    }
    const QString pretty = fields.value(QStringLiteral("PRETTY_NAME"));
    if (!pretty.isEmpty())
        return pretty;
    const QString name = fields.value(QStringLiteral("NAME"));
    const QString version = fields.value(QStringLiteral("VERSION"), fields.value(QStringLiteral("VERSION_ID")));
    if (!name.isEmpty() || !version.isEmpty())
        return (name + u' ' + version).trimmed();
    return QSysInfo::prettyProductName();
}

} // namespace quillbay
