#include "homebrew_cache/HomebrewCacheKeyOrder.h"

#include <QCollator>
#include <algorithm>
#include <array>
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
void appendToken(std::string& form, char32_t value)
{
    if (value < 0x80) {
        form.push_back(char(value));
        return;
    }
    const char bytes[4] {char(0xF0), char(value >> 16), char(value >> 8), char(value)};
    form.append(bytes, 4);
}

// A text as a string of tokens whose plain order is natural order by the ranks: a
// character is its rank; a run of digits is one marker (the rank of "0", digits being
// ranked side by side), its length without leading zeros, and its digits, so runs
// compare by value. After a separator below every token come the code units, which
// settle texts that are equal by rank. Every token is shifted by one to keep the
// separator lowest. Appended to `form`, which holds the forms of all texts of one sort.
void appendRankedForm(const RankTable& ranks, const QString& text, std::string& form)
{
    const char16_t* units = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype size = text.size();
    const char32_t digitMarker = char32_t(ranks[u'0' - kFirstRanked]) + 1;
    constexpr char32_t kLengthBase = 0x40000;
    for (qsizetype i = 0; i < size;) {
        if (!isDigit(units[i])) {
            appendToken(form, char32_t(rankOf(ranks, units[i])) + 1);
            ++i;
            continue;
        }
        while (i < size && units[i] == u'0')
            ++i;
        qsizetype end = i;
        while (end < size && isDigit(units[end]))
            ++end;
        appendToken(form, digitMarker);
        appendToken(form, kLengthBase + char32_t(end - i));
        for (; i < end; ++i)
            appendToken(form, char32_t(units[i]) + 1);
    }
    form.push_back(0);
    for (qsizetype i = 0; i < size; ++i)
        appendToken(form, char32_t(units[i]) + 1);
}

} // namespace

void sortInStandardOrder(std::vector<const QString*>& texts)
{
    const RankTable& ranks = asciiRanks();
    // All forms in one block: one allocation, and the sort moves small records only.
    struct Ranked
    {
        size_t offset;
        size_t size;
        const QString* text;
    };
    std::string forms;
    size_t units = 0;
    for (const QString* text : texts)
        units += size_t(text->size());
    forms.reserve(units * 3 + texts.size());
    std::vector<Ranked> ranked;
    ranked.reserve(texts.size());
    for (const QString* text : texts) {
        const size_t offset = forms.size();
        appendRankedForm(ranks, *text, forms);
        ranked.push_back(Ranked {offset, forms.size() - offset, text});
    }
    const char* all = forms.data();
    std::sort(ranked.begin(), ranked.end(), [all](const Ranked& a, const Ranked& b) {
        return std::string_view(all + a.offset, a.size) < std::string_view(all + b.offset, b.size);
    });
    for (size_t i = 0; i < ranked.size(); ++i)
        texts[i] = ranked[i].text;
    QCollator& collator = standardCollator();
    bool agrees = true;
    for (size_t i = 1; i < texts.size() && agrees; ++i)
        agrees = collator.compare(*texts[i - 1], *texts[i]) <= 0;
    if (agrees)
        return;
    // Sort keys make the thousands of comparisons byte comparisons; code units settle
    // what the collator holds equal, as above.
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

} // namespace quillbay
