#pragma once

#include <QFuture>
#include <QThreadPool>
#include <memory>
#include <type_traits>
#include <utility>

#include <QtConcurrent/QtConcurrentRun>

namespace quillbay {

// Owns a service whose calls run one at a time, away from the UI thread.
// Stores call run() and continue with QFuture::then(context, ...) on their own thread;
// the service hands back plain values, never pointers into its state.
//
// The pool is declared after the service so that it is destroyed first: its
// destructor waits for the running call, and only then does the service go.
template <typename Service> class SerialExecutor
{
public:
    explicit SerialExecutor(std::unique_ptr<Service> service)
        : m_service(std::move(service))
    {
        m_pool.setMaxThreadCount(1);
        m_pool.setExpiryTimeout(-1);
    }

    SerialExecutor(const SerialExecutor&) = delete;
    SerialExecutor& operator=(const SerialExecutor&) = delete;

    ~SerialExecutor() { m_pool.waitForDone(); }

    template <typename Function> auto run(Function function) -> QFuture<std::invoke_result_t<Function, Service&>>
    {
        Service* service = m_service.get();
        return QtConcurrent::run(&m_pool,
                                 [service, function = std::move(function)]() mutable { return function(*service); });
    }

    // Blocks until every queued call has finished. For shutdown and tests only:
    // never call it from a continuation that the queued work waits on.
    void drain() { m_pool.waitForDone(); }
    bool isIdle() const { return m_pool.activeThreadCount() == 0; }

    // Direct access for set-up before the first call; not safe while calls run.
    Service& unsafeService() { return *m_service; }

private:
    std::unique_ptr<Service> m_service;
    QThreadPool m_pool;
};

} // namespace quillbay
