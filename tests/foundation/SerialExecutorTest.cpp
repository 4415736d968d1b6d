#include <QCoreApplication>
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
    std::vector<int> expected;
    for (int i = 0; i < 20; ++i) {
        expected.push_back(i);
        executor
            .run([i](Recorder& r) {
                r.maxConcurrent = std::max(r.maxConcurrent, ++r.concurrent);
                r.thread = QThread::currentThreadId();
                QThread::usleep(200);
                r.calls.push_back(i);
                --r.concurrent;
                return i;
            })
            .then(&context, [&continued](int value) {
                EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                continued.push_back(value);
            });
    }
    ASSERT_TRUE(test::waitUntil([&] { return continued.size() == 20; }));
    executor.drain();
    const Recorder& r = executor.unsafeService();
    EXPECT_EQ(r.maxConcurrent, 1);
    EXPECT_NE(r.thread, QThread::currentThreadId());
    EXPECT_EQ(r.calls, expected);
    EXPECT_EQ(continued, expected) << "continuations resume on the context's thread, in order";
}
