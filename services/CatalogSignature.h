#pragma once

#include <QByteArray>

namespace quillbay::services {

// Checks the two signature headers of a catalog request against the shared key: the
// timestamp must be plain decimal within `windowSeconds` of `nowSeconds`, and the
// signature the lower-case hex HMAC-SHA-256 of "GET\n" + path + "\n" + timestamp,
// compared in constant time.
bool catalogSignatureIsValid(const QByteArray& key,
                             const QByteArray& encodedPath,
                             const QByteArray& timestampHeader,
                             const QByteArray& signatureHeader,
                             qint64 nowSeconds,
                             qint64 windowSeconds);

} // namespace quillbay::services
