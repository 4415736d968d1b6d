#include "CatalogSignature.h"

#include <openssl/crypto.h>

#include "homebrew_catalog/HomebrewAPIClient.h"

namespace quillbay::services {

namespace {
bool isPlainDecimal(const QByteArray& text)
{
    const qsizetype start = text.startsWith('-') ? 1 : 0;
    if (text.size() <= start || text.size() > 19)
        return false;
    for (qsizetype i = start; i < text.size(); ++i)
        if (text[i] < '0' || text[i] > '9')
            return false;
    return true;
}
} // namespace

bool catalogSignatureIsValid(const QByteArray& key,
                             const QByteArray& encodedPath,
                             const QByteArray& timestampHeader,
                             const QByteArray& signatureHeader,
                             qint64 nowSeconds,
                             qint64 windowSeconds)
{
    if (!isPlainDecimal(timestampHeader))
        return false;
    bool ok = false;
    const qint64 timestamp = timestampHeader.toLongLong(&ok);
    if (!ok)
        return false;
    const qint64 skew = nowSeconds > timestamp ? nowSeconds - timestamp : timestamp - nowSeconds;
    if (skew > windowSeconds)
        return false;
    const QByteArray expected = HomebrewAPIClient::signature(key, encodedPath, timestamp);
    if (signatureHeader.size() != expected.size())
        return false;
    return CRYPTO_memcmp(expected.constData(), signatureHeader.constData(), static_cast<size_t>(expected.size())) == 0;
}

} // namespace quillbay::services
