#include "VersionChecking/VersionCheckError.h"

#include <QStringDecoder>

namespace quillbay {

VersionCheckError VersionCheckError::httpStatus(int status, QByteArray body)
{
    VersionCheckError error(Kind::httpStatus);
    error.m_status = status;
    error.m_body = std::move(body);
    return error;
}

QString VersionCheckError::description() const
{
    switch (m_kind) {
    case Kind::httpStatus: {
        const QString prefix = QStringLiteral("Version check failed with status %1").arg(m_status);
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString body = decoder.decode(m_body);
        if (m_body.isEmpty() || decoder.hasError())
            return prefix + QLatin1Char('.');
        return prefix + QStringLiteral(": ") + body;
    }
    case Kind::invalidURL:
        return QStringLiteral("Unable to build the version check URL.");
    case Kind::invalidResponse:
        return QStringLiteral("The version check response was not an HTTP response.");
    }
    Q_UNREACHABLE();
}

QString failureDescription(const VersionCheckFailure& failure)
{
    struct Describe
    {
        QString operator()(const VersionCheckError& e) const { return e.description(); }
        QString operator()(const VersionCheckTransportError& e) const { return e.description; }
        QString operator()(const AppVersionDecodingError& e) const { return e.description; }
        QString operator()(const VersionCheckCancelled&) const
        {
            return QStringLiteral("The version check was cancelled.");
        }
    };
    return std::visit(Describe {}, failure);
}

} // namespace quillbay
