// libFuzzer entry for one target, chosen at compile time by QUILLBAY_FUZZ_TARGET.
#include <QCoreApplication>
#include <QLoggingCategory>
#include <cstring>

#include "FuzzTargets.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Readers log every refused input; at thousands of inputs a second the log would cost
    // more than the parsing and bury libFuzzer's own report.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const quillbay::fuzz::Target target = [] {
        for (const auto& t : quillbay::fuzz::allTargets) {
            if (std::strcmp(t.name, QUILLBAY_FUZZ_TARGET) == 0)
                return t.run;
        }
        __builtin_trap();
    }();
    target(data, size);
    return 0;
}
