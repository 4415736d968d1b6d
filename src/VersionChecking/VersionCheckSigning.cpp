#include "VersionChecking/VersionCheckSigning.h"

#include <QStringList>
#include <array>
#include <stdexcept>

#include <openssl/evp.h>

namespace quillbay::VersionCheckSigning {

namespace {

QString stripSlashes(const QString& text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text.at(begin) == QLatin1Char('/'))
        ++begin;
    while (end > begin && text.at(end - 1) == QLatin1Char('/'))
        --end;
    return text.mid(begin, end - begin);
}

} // namespace

QString normalizedPath(const QString& basePath, const QString& path)
{
    QStringList parts;
    for (const QString& piece : {basePath, path}) {
        const QString stripped = stripSlashes(piece);
        if (!stripped.isEmpty())
            parts << stripped;
    }
    return QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

QString signedText(const SignedFields& fields)
{
    return QStringList {
        fields.method,
        fields.path,
        fields.appID.trimmed().toLower(),
        fields.platform.trimmed().toLower(),
        fields.channel.trimmed().toLower(),
        fields.currentVersion.trimmed(),
        fields.timestamp,
    }
        .join(QLatin1Char('\n'));
}

QByteArray hmacSHA256Hex(const QByteArray& key, const QByteArray& message)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> mac {};
    size_t macLength = 0;
    // An empty key is a valid HMAC key; OpenSSL wants a non-null pointer all the same.
    static const unsigned char emptyKey = 0;
    const void* keyBytes = key.isEmpty() ? static_cast<const void*>(&emptyKey) : key.constData();
    const unsigned char* data = reinterpret_cast<const unsigned char*>(message.constData());
    if (!EVP_Q_mac(nullptr, "HMAC", nullptr, "SHA256", nullptr, keyBytes, static_cast<size_t>(key.size()), data,
                   static_cast<size_t>(message.size()), mac.data(), mac.size(), &macLength))
        throw std::runtime_error("HMAC-SHA-256 is not available");
    return QByteArray(reinterpret_cast<const char*>(mac.data()), static_cast<qsizetype>(macLength)).toHex();
}

QByteArray signature(const QString& secret, const SignedFields& fields)
{
    return hmacSHA256Hex(secret.toUtf8(), signedText(fields).toUtf8());
}

} // namespace quillbay::VersionCheckSigning
