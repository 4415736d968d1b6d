#pragma once

#include <QString>
#include <functional>

namespace quillbay::test {

// ../shared beside the checkout, where the real public data lies; empty when absent
// (a fresh clone), in which case tests that need it call GTEST_SKIP with a reason.
QString sharedDataDir();
#define QUILLBAY_REQUIRE_SHARED_DATA(dir)                                                                              \
    const QString dir = ::quillbay::test::sharedDataDir();                                                             \
    if (dir.isEmpty())                                                                                                 \
    GTEST_SKIP() << "../shared/realdata is not beside this checkout; skipping the real-data check"

// The source tree (for fixtures and resources).
QString sourceDir();

// Runs the event loop until the predicate holds or the time is up; returns the predicate.
bool waitUntil(const std::function<bool()>& predicate, int timeoutMs = 10000);

// Root can read anything, so permission-based tests skip when running as root.
bool runningAsRoot();

} // namespace quillbay::test
