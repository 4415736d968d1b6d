#include "homebrew_cache/HomebrewCacheKeyOrder.h"

#include <QCollator>
#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/LocalizedText.h"

namespace quillbay {

namespace {

constexpr char16_t kFirstRanked = 0x20;
constexpr char16_t kLastRanked = 0x7E;
// Above every printable ASCII rank: other characters sort after them by code unit, which
// the check afterwards corrects where the collator thinks otherwise.
constexpr int kUnrankedBase = 0x10000;

using RankTable = std::array<int, kLastRanked - kFirstRanked + 1>;

// The rank of every printable ASCII character as the collator orders them alone; ties
// (letters differing in case) share a rank. Built once per thread, like the collator.
const RankTable& asciiRanks()
{
    thread_local const RankTable table = [] {
        QCollator& collator = standardCollator();
        std::array<QString, std::tuple_size_v<RankTable>> texts;
        for (size_t i = 0; i < texts.size(); ++i)
            texts[i] = QString(QChar(char16_t(kFirstRanked + i)));
        std::array<size_t, std::tuple_size_v<RankTable>> order;
        std::iota(order.begin(), order.end(), size_t(0));
        std::stable_sort(order.begin(), order.end(),
                         [&](size_t a, size_t b) { return collator.compare(texts[a], texts[b]) < 0; });
        RankTable ranks {};
        int rank = 0;
        for (size_t i = 0; i < order.size(); ++i) {
            if (i > 0 && collator.compare(texts[order[i - 1]], texts[order[i]]) != 0)
                ++rank;
            ranks[order[i]] = rank;
        }
        return ranks;
    }();
    return table;
}

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

int rankOf(const RankTable& ranks, char16_t c)
{
    if (c >= kFirstRanked && c <= kLastRanked)
        return ranks[c - kFirstRanked];
    return kUnrankedBase + c;
}

// One token in bytes whose plain order (memcmp) is the tokens' order: values below 0x80
// as one byte, larger ones as a lead byte above all of those and three bytes, high
// first. No token's code is the start of another's.
char* writeToken(char* out, char32_t value)
{
    if (value < 0x80) {
        *out++ = char(value);
        return out;
    }
    out[0] = char(0xF0);
    out[1] = char(value >> 16);
    out[2] = char(value >> 8);
    out[3] = char(value);
    return out + 4;
}

constexpr size_t kMaxFormBytesPerUnit = 10;

// A text as a string of tokens whose plain order is natural order by the ranks: a
// character is its rank; a run of digits is one marker (the rank of "0", digits being
// ranked side by side), its length without leading zeros, and its digits, so runs
// compare by value. After a separator below every token come the code units, which
// settle texts that are equal by rank. Every token is shifted by one to keep the
// separator lowest. Written at `out`; returns the end.
char* writeRankedForm(const RankTable& ranks, const QString& text, char* out)
{
    const char16_t* units = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype size = text.size();
    const char32_t digitMarker = char32_t(ranks[u'0' - kFirstRanked]) + 1;
    constexpr char32_t kLengthBase = 0x40000;
    for (qsizetype i = 0; i < size;) {
        if (!isDigit(units[i])) {
            out = writeToken(out, char32_t(rankOf(ranks, units[i])) + 1);
            ++i;
            continue;
        }
        while (i < size && units[i] == u'0')
            ++i;
        qsizetype end = i;
        while (end < size && isDigit(units[end]))
            ++end;
        out = writeToken(out, digitMarker);
        out = writeToken(out, kLengthBase + char32_t(end - i));
        for (; i < end; ++i)
            out = writeToken(out, char32_t(units[i]) + 1);
    }
    *out++ = 0;
    for (qsizetype i = 0; i < size; ++i)
        out = writeToken(out, char32_t(units[i]) + 1);
    return out;
}

} // namespace

void sortByRank(std::vector<const QString*>& texts)
{
    const RankTable& ranks = asciiRanks();
    // All forms in one block: one allocation, and the sort moves small records only.
    // A character takes at most ten bytes of its form (a one-digit run and its code
    // unit), and the block is written in place up to that bound.
    struct Ranked
    {
        size_t offset;
        size_t size;
        const QString* text;
    };
    size_t bound = 0;
    for (const QString* text : texts)
        bound += size_t(text->size()) * kMaxFormBytesPerUnit + 1;
    const std::unique_ptr<char[]> forms(new char[bound]);
    std::vector<Ranked> ranked;
    ranked.reserve(texts.size());
    char* out = forms.get();
    for (const QString* text : texts) {
        char* const start = out;
        out = writeRankedForm(ranks, *text, out);
        ranked.push_back(Ranked {size_t(start - forms.get()), size_t(out - start), text});
    }
    const char* all = forms.get();
    std::sort(ranked.begin(), ranked.end(), [all](const Ranked& a, const Ranked& b) {
        return std::string_view(all + a.offset, a.size) < std::string_view(all + b.offset, b.size);
    });
    for (size_t i = 0; i < ranked.size(); ++i)
        texts[i] = ranked[i].text;
}

bool isInStandardOrder(const std::vector<const QString*>& texts)
{
    return isInStandardOrder(texts, 1, texts.size());
}

bool isInStandardOrder(const std::vector<const QString*>& texts, size_t first, size_t last)
{
    QCollator& collator = standardCollator();
    for (size_t i = std::max<size_t>(first, 1); i < last; ++i) {
        if (collator.compare(*texts[i - 1], *texts[i]) > 0)
            return false;
    }
    return true;
}

void sortByCollationKeys(std::vector<const QString*>& texts)
{
    // Sort keys make the thousands of comparisons byte comparisons; code units settle
    // what the collator holds equal, as the ranked form does.
    QCollator& collator = standardCollator();
    std::vector<std::pair<QCollatorSortKey, const QString*>> keyed;
    keyed.reserve(texts.size());
    for (const QString* text : texts)
        keyed.emplace_back(collator.sortKey(*text), text);
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        const int order = a.first.compare(b.first);
        return order != 0 ? order < 0 : QStringView(*a.second).compare(QStringView(*b.second)) < 0;
    });
    for (size_t i = 0; i < keyed.size(); ++i)
        texts[i] = keyed[i].second;
}

void sortInStandardOrder(std::vector<const QString*>& texts)
{
    sortByRank(texts);
    if (!isInStandardOrder(texts))
        sortByCollationKeys(texts);
}

} // namespace quillbay
