#pragma once

#include <QSemaphore>
#include <atomic>
#include <memory>

#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"

namespace quillbay::test {

// The real processor, with a gate in front: each call waits for a permit, so a test can
// change the store while a call is provably still running.
class GatedProcessor final : public HomebrewInstalledPackageProcessor
{
public:
    struct Control
    {
        QSemaphore gate;
        std::atomic<int> started {0};
    };

    explicit GatedProcessor(std::shared_ptr<Control> control)
        : m_control(std::move(control))
    {
    }

    HomebrewInstalledPackageLists process(const QList<HomebrewInstalledPackage>& rawPackages,
                                          const HomebrewPackageSummaries& catalogSummaries,
                                          const QString& searchText,
                                          std::stop_token stopToken) const override
    {
        ++m_control->started;
        m_control->gate.acquire();
        return HomebrewInstalledPackageProcessor::process(rawPackages, catalogSummaries, searchText, stopToken);
    }

private:
    std::shared_ptr<Control> m_control;
};

} // namespace quillbay::test
