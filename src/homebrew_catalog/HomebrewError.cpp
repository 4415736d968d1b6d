#include "homebrew_catalog/HomebrewError.h"

namespace quillbay {

namespace {
template <class... Ts> struct Overloaded : Ts...
{
    using Ts::operator()...;
};
template <class... Ts> Overloaded(Ts...) -> Overloaded<Ts...>;
} // namespace

QString HomebrewError::localizedDescription() const
{
    return std::visit(
        Overloaded {
            [](const HomebrewAPIError& e) { return e.localizedDescription(); },
            [](const HomebrewCatalogProcessingError& e) {
                return QStringLiteral("The operation couldn\u2019t be completed. (%1)").arg(e.description());
            },
            [](const Decoding& e) { return QStringLiteral("The data couldn\u2019t be read: %1").arg(e.message); },
            [](const File& e) { return e.message; },
            [](const Transport& e) { return e.message; },
            [](const Cancellation&) { return QStringLiteral("The operation was cancelled."); },
        },
        m_value);
}

QString HomebrewError::debugDescription() const
{
    return std::visit(
        Overloaded {
            [](const HomebrewAPIError& e) { return QStringLiteral("HomebrewAPIError: ") + e.localizedDescription(); },
            [](const HomebrewCatalogProcessingError& e) { return e.description(); },
            [](const Decoding& e) { return QStringLiteral("DecodingError: ") + e.message; },
            [](const File& e) { return QStringLiteral("FileError: ") + e.message; },
            [](const Transport& e) { return QStringLiteral("TransportError(%1): %2").arg(e.code).arg(e.message); },
            [](const Cancellation&) { return QStringLiteral("CancellationError"); },
        },
        m_value);
}

} // namespace quillbay
