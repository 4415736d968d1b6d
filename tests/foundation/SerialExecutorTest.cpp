#include <QCoreApplication>
#include <QObject>
#include <QThread>
#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/SerialExecutor.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;

namespace {

struct Recorder
{
    std::vector<int> calls;
    std::atomic<int> concurrent {0};
    int maxConcurrent = 0;
    Qt::HANDLE thread = nullptr;
};

} // namespace

TEST(SerialExecutorTest, RunsCallsOneAtATimeInOrderOffTheCallingThread)
{
    SerialExecutor<Recorder> executor(std::make_unique<Recorder>());
    QObject context;
    std::vector<int> continued;
    for (int i = 0; i < 20; ++i) {
        executor
            .run([i](Recorder& r) {
                const int now = ++r.concurrent;
                r.maxConcurrent = std::max(r.maxConcurrent, now);
                r.thread = QThread::currentThreadId();
                QThread::usleep(200);
                r.calls.push_back(i);
                --r.concurrent;
                return i * 2;
            })
            .then(&context, [&continued](int value) {
                // Continuations resume on the context's (this) thread.
                EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                continued.push_back(value);
            });
    }
    ASSERT_TRUE(test::waitUntil([&] { return continued.size() == 20; }));
    executor.drain();
    const Recorder& r = executor.unsafeService();
    EXPECT_EQ(r.maxConcurrent, 1);
    EXPECT_NE(r.thread, QThread::currentThreadId());
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(r.calls[static_cast<std::size_t>(i)], i);
        EXPECT_EQ(continued[static_cast<std::size_t>(i)], i * 2);
    }
}
