#pragma once

#include <QByteArray>
#include <array>
#include <cstddef>

namespace quillbay {

// A key compiled in as XOR-masked bytes. consteval guarantees the clear text exists only
// in the compiler; unmask() rebuilds it at the moment of use.
template <std::size_t N> struct MaskedSecret
{
    std::array<unsigned char, N - 1> bytes {};

    QByteArray unmask() const
    {
        QByteArray out(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            out[static_cast<qsizetype>(i)] = static_cast<char>(bytes[i] ^ maskByte(i));
        return out;
    }

    static constexpr unsigned char maskByte(std::size_t i)
    {
        return static_cast<unsigned char>((i * 167u + 0x5Au) ^ (i >> 3));
    }
};

template <std::size_t N> consteval MaskedSecret<N> maskSecret(const char (&text)[N])
{
    MaskedSecret<N> secret;
    for (std::size_t i = 0; i + 1 < N; ++i)
        secret.bytes[i]
            = static_cast<unsigned char>(static_cast<unsigned char>(text[i]) ^ MaskedSecret<N>::maskByte(i));
    return secret;
}

} // namespace quillbay
