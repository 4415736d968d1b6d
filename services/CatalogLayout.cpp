#include "CatalogLayout.h"

#include <QFileInfo>

namespace quillbay::services::catalogLayout {

QString setsFolder(const QString& dataDir)
{
    return dataDir + QStringLiteral("/sets");
}

QString setFolder(const QString& dataDir, const QString& snapshotID)
{
    return setsFolder(dataDir) + u'/' + snapshotID;
}

QString currentLink(const QString& dataDir)
{
    return dataDir + QStringLiteral("/current");
}

QString currentSetFolder(const QString& dataDir)
{
    const QFileInfo link(currentLink(dataDir));
    if (!link.exists())
        return {};
    return link.canonicalFilePath();
}

QString manifestPath(const QString& set)
{
    return set + QStringLiteral("/manifest.json");
}

QString snapshotPath(const QString& set, HomebrewCatalogKind kind)
{
    return set + u'/' + rawValue(kind) + QStringLiteral(".json");
}

QString detailPath(const QString& set, HomebrewCatalogKind kind, const QString& name)
{
    return set + QStringLiteral("/details/") + rawValue(kind) + u'/' + detailFileName(name);
}

QString detailFileName(const QString& name)
{
    static constexpr char hex[] = "0123456789ABCDEF";
    QString out;
    for (const char c : name.toUtf8()) {
        const auto b = static_cast<unsigned char>(c);
        if ((b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || (b >= '0' && b <= '9') || b == '-' || b == '_'
            || (b == '.' && !out.isEmpty())) {
            out.append(QLatin1Char(c));
            continue;
        }
        out.append(u'%');
        out.append(QLatin1Char(hex[b >> 4]));
        out.append(QLatin1Char(hex[b & 0xF]));
    }
    return out + QStringLiteral(".json");
}

bool isSnapshotID(const QString& text)
{
    if (text.isEmpty() || text == u"." || text == u"..")
        return false;
    for (const QChar c : text)
        if (!(c.isLetterOrNumber() || c == u'.' || c == u'_' || c == u'-') || c.unicode() > 0x7F)
            return false;
    return true;
}

} // namespace quillbay::services::catalogLayout
