#include "homebrew_catalog/HomebrewEndpoint.h"

#include "foundation/LocalizedText.h"

namespace quillbay {

namespace {
bool isAllowedUnencoded(char32_t c)
{
    if (c == U'-' || c == U'.' || c == U'_' || c == U'~')
        return true;
    return isAlphanumericScalar(c);
}
} // namespace

QString percentEncodedName(const QString& name)
{
    static constexpr char hexDigits[] = "0123456789ABCDEF";
    QString out;
    out.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        char32_t c = name.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < name.size() && name.at(i + 1).isLowSurrogate()) {
            c = QChar::surrogateToUcs4(name.at(i), name.at(i + 1));
            ++i;
        } else if (QChar::isSurrogate(c)) {
            return {};
        }
        if (isAllowedUnencoded(c)) {
            out.append(QString::fromUcs4(&c, 1));
            continue;
        }
        const QByteArray utf8 = QString::fromUcs4(&c, 1).toUtf8();
        for (const char byte : utf8) {
            const auto b = static_cast<unsigned char>(byte);
            out.append(u'%');
            out.append(QLatin1Char(hexDigits[b >> 4]));
            out.append(QLatin1Char(hexDigits[b & 0xF]));
        }
    }
    return out;
}

QString sanitizedCacheName(const QString& text)
{
    QString out = text;
    out.replace(u'/', u'-');
    out.replace(u':', u'-');
    return out;
}

QString HomebrewEndpoint::path() const
{
    switch (m_case) {
    case Case::catalogManifest:
        return QStringLiteral("/v1/catalog/manifest.json");
    case Case::catalogSnapshot:
        return m_payload;
    case Case::formulaDetail:
        return QStringLiteral("/v1/details/formula/") + percentEncodedName(m_payload) + QStringLiteral(".json");
    case Case::caskDetail:
        return QStringLiteral("/v1/details/cask/") + percentEncodedName(m_payload) + QStringLiteral(".json");
    }
    return {};
}

QString HomebrewEndpoint::cacheStem() const
{
    switch (m_case) {
    case Case::catalogManifest:
        return QStringLiteral("proxy-v1-catalog-manifest");
    case Case::catalogSnapshot:
        return QStringLiteral("proxy-v1-") + rawValue(m_catalogKind) + QStringLiteral("-catalog-")
            + sanitizedCacheName(m_payload);
    case Case::formulaDetail:
        return QStringLiteral("proxy-v1-formula-detail-") + sanitizedCacheName(m_payload);
    case Case::caskDetail:
        return QStringLiteral("proxy-v1-cask-detail-") + sanitizedCacheName(m_payload);
    }
    return {};
}

} // namespace quillbay
