#pragma once

#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "homebrew_catalog/JsonFields.h"

namespace quillbay {

// Makes many short texts share a few large allocations instead of taking one each: a
// catalog row holds three to five strings, and their mallocs and frees used to cost more
// than decoding the row. Every string is a null-terminated slice of a block and holds one
// reference to it, so a block lives until its last string is gone. The strings behave as
// any shared QString: writing to one copies it first. A writer belongs to one thread; the
// strings it made may go anywhere.
class SharedTextBlocks
{
public:
    // 16K characters: a 32 KB block holds the text of about 150 rows, and one row kept
    // alive keeps no more than that.
    explicit SharedTextBlocks(qsizetype blockLength = 16 * 1024)
        : m_blockLength(blockLength)
    {
    }

    // The UTF-8 text as a QString equal to json::toQString's. Texts that are not plain
    // ASCII, rare in the catalog, get an allocation of their own from the UTF-8 decoder.
    QString text(std::string_view utf8)
    {
        const auto length = static_cast<qsizetype>(utf8.size());
        if (length == 0)
            return json::toQString(utf8);
        if (m_free < length + 1)
            startBlock(length + 1);
        // Widen first and look at the high bits on the way: one pass over the bytes, eight
        // at a time, which suits texts this short better than a vector loop with its set-up.
        // ASCII widened this way is exactly its UTF-16.
        const char* const in = utf8.data();
        char16_t* const out = m_next;
        std::uint64_t high = 0;
        qsizetype i = 0;
        for (; i + 8 <= length; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, in + i, sizeof word);
            high |= word;
            for (qsizetype k = 0; k < 8; ++k)
                out[i + k] = static_cast<unsigned char>(in[i + k]);
        }
        for (; i < length; ++i) {
            high |= static_cast<unsigned char>(in[i]);
            out[i] = static_cast<unsigned char>(in[i]);
        }
        if (high & 0x8080808080808080u)
            return json::toQString(utf8); // what was written stays unused
        out[length] = u'\0'; // QString's contract: the character after the last is null
        m_next += length + 1;
        m_free -= length + 1;
        auto* const header = m_block.data_ptr().d_ptr();
        header->ref();
        return QString(QString::DataPointer(header, out, length));
    }

private:
    void startBlock(qsizetype atLeast)
    {
        // The block string holds the writer's reference; replacing it hands the old block
        // over to the strings cut from it.
        m_block = QString(std::max(m_blockLength, atLeast), Qt::Uninitialized);
        m_next = m_block.data_ptr().data();
        m_free = m_block.size();
    }

    qsizetype m_blockLength;
    QString m_block;
    char16_t* m_next = nullptr;
    qsizetype m_free = 0;
};

} // namespace quillbay
