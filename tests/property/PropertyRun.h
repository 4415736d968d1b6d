#pragma once

#include <QtGlobal>
#include <cstdlib>
#include <string>

namespace quillbay::test {

// How many random trees a property test builds and from which seed. The defaults keep the
// suite quick; QUILLBAY_PROPERTY_TREES raises the count for a long run, and a failure
// names the seed of its tree so that QUILLBAY_PROPERTY_SEED=<seed> QUILLBAY_PROPERTY_TREES=1
// builds exactly that tree again.
struct PropertyRun
{
    quint64 seed = 20240611;
    int trees = 0;

    static PropertyRun fromEnvironment(int defaultTrees)
    {
        PropertyRun run;
        run.trees = defaultTrees;
        if (const char* seed = std::getenv("QUILLBAY_PROPERTY_SEED"))
            run.seed = std::strtoull(seed, nullptr, 10);
        if (const char* trees = std::getenv("QUILLBAY_PROPERTY_TREES"))
            run.trees = std::atoi(trees);
        return run;
    }

    static std::string replayHint(quint64 treeSeed)
    {
        return "tree seed " + std::to_string(treeSeed)
            + " (rebuild with QUILLBAY_PROPERTY_SEED=" + std::to_string(treeSeed) + " QUILLBAY_PROPERTY_TREES=1)";
    }
};

// Both deleters log every refusal; thousands of trees would flood the test output.
class QuietLog
{
public:
    QuietLog()
        : m_previous(qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {}))
    {
    }
    ~QuietLog() { qInstallMessageHandler(m_previous); }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;

private:
    QtMessageHandler m_previous;
};

} // namespace quillbay::test
