#include <QStringList>
#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/LocalizedText.h"
#include "homebrew_cache/HomebrewCacheKeyOrder.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

QStringList sorted(const QStringList& input)
{
    std::vector<const QString*> pointers;
    for (const QString& text : input)
        pointers.push_back(&text);
    sortInStandardOrder(pointers);
    QStringList result;
    for (const QString* text : pointers)
        result.append(*text);
    return result;
}

} // namespace

// Whatever order the keys come in, they leave in the collator's order; keys it holds
// equal leave in code-unit order, so a scan's entry order never depends on the listing.
TEST(HomebrewCacheKeyOrderTest, OrdersAsTheCollatorDoesWhateverTheInputOrder)
{
    struct Case
    {
        const char* name;
        QStringList expected;
    };
    const Case cases[] = {
        {"numbers by value",
         {u"formula:wget:1.2"_s, u"formula:wget:1.9"_s, u"formula:wget:1.10"_s, u"formula:wget:1.10.1"_s,
          u"formula:wget:10"_s, u"formula:wget:100"_s}},
        {"equal for the collator, then by code units",
         {u"formula:Zed:1.2"_s, u"formula:zed:1.2"_s, u"formula:zed:01.3"_s, u"formula:zed:1.3"_s}},
        // Accented letters sit beside their base letter, which the per-character rank
        // cannot know: the collator's own order must win.
        {"accents",
         {u"cask:cafe:1"_s, u"cask:caf\u00e9:1"_s, u"cask:cafg:1"_s, u"cask:\u00e9t\u00e9:1"_s, u"cask:ez:1"_s}},
    };
    QCollator& collator = standardCollator();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (size_t rotation = 0; rotation < size_t(c.expected.size()); ++rotation) {
            QStringList input = c.expected;
            std::rotate(input.begin(), input.begin() + qsizetype(rotation), input.end());
            std::reverse(input.begin(), input.end());
            const QStringList result = sorted(input);
            EXPECT_EQ(result, c.expected) << qPrintable(input.join(u' '));
            for (qsizetype i = 1; i < result.size(); ++i)
                EXPECT_LE(collator.compare(result.at(i - 1), result.at(i)), 0);
        }
    }
}
