#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "foundation/Version.h"

namespace quillbay::fuzz {

namespace {

// The ordering answers only pairs whose minors are both present or both absent once the
// majors leave the decision; other pairs stop the program by design and are not asked.
bool comparable(const AppleBuild& a, const AppleBuild& b)
{
    const bool majorsDecide = a.major && b.major && *a.major != *b.major;
    const bool oneMajor = a.major.has_value() != b.major.has_value();
    return majorsDecide || oneMajor || a.minor.has_value() == b.minor.has_value();
}

} // namespace

void appleBuild(const std::uint8_t* data, std::size_t size)
{
    // Two build texts, one per line: "21B74\n21C5054b".
    const QStringList lines = linesOf(data, size);
    const AppleBuild a(lines.value(0));
    const AppleBuild b(lines.value(1));
    if (a.textual != lines.value(0))
        __builtin_trap();
    // Parsing is a function of the text.
    if (!(AppleBuild(a.textual) == a))
        __builtin_trap();
    // The pieces never hold more than the text: a minor is one character, and the daily
    // part is what follows it.
    if (a.daily && !a.minor)
        __builtin_trap();
    if (a.daily && !a.textual.endsWith(*a.daily))
        __builtin_trap();
    if (!comparable(a, b))
        return;
    const bool less = a < b;
    const bool greater = b < a;
    if (less && greater)
        __builtin_trap();
    if (a == b && (less || greater))
        __builtin_trap();
    if (a < a)
        __builtin_trap();
}

} // namespace quillbay::fuzz
