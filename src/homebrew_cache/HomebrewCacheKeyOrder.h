#pragma once

#include <QString>
#include <vector>

namespace quillbay {

// Puts texts in the order of localizedStandardCompare (ascending; texts the collator
// holds equal end up in code-unit order). Most cache keys are ASCII, and sorting
// thousands of them through collation keys costs more than the rest of a scan's
// user-space work, so they are first sorted by a cheap per-character rank taken from the
// collator itself, and the result is then checked pair by pair with the collator. Only
// when a pair disagrees (a locale with contractions, text the rank does not cover) are
// they sorted again by collation keys, so the order never depends on the shortcut.
void sortInStandardOrder(std::vector<const QString*>& texts);

// The three steps of sortInStandardOrder, for callers that check the order on another
// thread while they go on: the ranked order; whether the collator agrees with every
// adjacent pair (the collator is the calling thread's own); the order by collation keys.
void sortByRank(std::vector<const QString*>& texts);
bool isInStandardOrder(const std::vector<const QString*>& texts);
// The same for the pairs ending at indexes [first, last), so that threads can share it.
bool isInStandardOrder(const std::vector<const QString*>& texts, size_t first, size_t last);
void sortByCollationKeys(std::vector<const QString*>& texts);

} // namespace quillbay
