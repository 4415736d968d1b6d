#include "homebrew_cache/HomebrewCacheKeyOrder.h"

#include <QCollator>
#include <algorithm>
#include <array>
#include <numeric>
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

// Natural order by the ranks: runs of digits compare by value, everything else by rank.
// Equal under that, by code units, so the order is total and repeatable.
int rankedCompare(const RankTable& ranks, const QString& left, const QString& right)
{
    const char16_t* a = reinterpret_cast<const char16_t*>(left.constData());
    const char16_t* b = reinterpret_cast<const char16_t*>(right.constData());
    const qsizetype aSize = left.size();
    const qsizetype bSize = right.size();
    // Keys share long prefixes ("formula:"); equal code units have equal ranks, so the
    // walk starts where they first differ, backed up to the start of a run of digits
    // that the difference falls into (a run compares as a whole).
    qsizetype start = 0;
    const qsizetype common = std::min(aSize, bSize);
    while (start < common && a[start] == b[start])
        ++start;
    if ((start < aSize && isDigit(a[start])) || (start < bSize && isDigit(b[start]))) {
        while (start > 0 && isDigit(a[start - 1]))
            --start;
    }
    qsizetype i = start;
    qsizetype j = start;
    while (i < aSize && j < bSize) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            while (i < aSize && a[i] == u'0')
                ++i;
            while (j < bSize && b[j] == u'0')
                ++j;
            qsizetype aEnd = i;
            qsizetype bEnd = j;
            while (aEnd < aSize && isDigit(a[aEnd]))
                ++aEnd;
            while (bEnd < bSize && isDigit(b[bEnd]))
                ++bEnd;
            if (aEnd - i != bEnd - j)
                return aEnd - i < bEnd - j ? -1 : 1;
            for (; i < aEnd; ++i, ++j) {
                if (a[i] != b[j])
                    return a[i] < b[j] ? -1 : 1;
            }
            continue;
        }
        const int aRank = rankOf(ranks, a[i]);
        const int bRank = rankOf(ranks, b[j]);
        if (aRank != bRank)
            return aRank < bRank ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < aSize || j < bSize)
        return i < aSize ? 1 : -1;
    return QStringView(left).compare(QStringView(right));
}

} // namespace

void sortInStandardOrder(std::vector<const QString*>& texts)
{
    const RankTable& ranks = asciiRanks();
    std::sort(texts.begin(), texts.end(),
              [&ranks](const QString* a, const QString* b) { return rankedCompare(ranks, *a, *b) < 0; });
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
