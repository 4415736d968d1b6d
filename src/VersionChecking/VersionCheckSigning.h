#pragma once

#include <QByteArray>
#include <QString>

namespace quillbay {

// The request signature both sides compute: seven lines joined by "\n" (no trailing line
// feed), HMAC-SHA-256 over their UTF-8 bytes keyed by the UTF-8 bytes of the secret, as
// 64 lowercase hexadecimal digits. The query carries the raw values; the signature signs
// the trimmed (and, for the identifiers, lowercased) ones, so stray blanks cannot make
// two different signatures for one request.
namespace VersionCheckSigning {

// The base URL's path and the endpoint path, each stripped of leading and trailing "/",
// empty pieces skipped, joined by "/" behind one leading "/".
QString normalizedPath(const QString& basePath, const QString& path);

struct SignedFields
{
    QString method = QStringLiteral("GET");
    QString path; // already normalized
    QString appID;
    QString platform;
    QString channel;
    QString currentVersion;
    QString timestamp;
};

QString signedText(const SignedFields& fields);

// HMAC-SHA-256 of message under key, lowercase hexadecimal.
QByteArray hmacSHA256Hex(const QByteArray& key, const QByteArray& message);

QByteArray signature(const QString& secret, const SignedFields& fields);

} // namespace VersionCheckSigning

} // namespace quillbay
