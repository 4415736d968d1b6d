#include "homebrew_catalog/HomebrewError.h"

namespace quillbay {

QString HomebrewError::localizedDescription() const
{
    switch (m_kind) {
    case Kind::api:
        return m_api.localizedDescription();
    case Kind::processing:
        return QStringLiteral("The operation couldn\u2019t be completed. (%1)").arg(m_processing.description());
    case Kind::decoding:
        return QStringLiteral("The data couldn\u2019t be read: %1").arg(m_message);
    case Kind::file:
    case Kind::transport:
        return m_message;
    case Kind::cancellation:
        return QStringLiteral("The operation was cancelled.");
    }
    return {};
}

QString HomebrewError::debugDescription() const
{
    switch (m_kind) {
    case Kind::api:
        return QStringLiteral("HomebrewAPIError: ") + m_api.localizedDescription();
    case Kind::processing:
        return m_processing.description();
    case Kind::decoding:
        return QStringLiteral("DecodingError: ") + m_message;
    case Kind::file:
        return QStringLiteral("FileError: ") + m_message;
    case Kind::transport:
        return QStringLiteral("TransportError(%1): %2").arg(m_code).arg(m_message);
    case Kind::cancellation:
        return QStringLiteral("CancellationError");
    }
    return {};
}

} // namespace quillbay
