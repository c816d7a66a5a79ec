#include "platform/GlobalQueue.h"

#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace Qorvane {

namespace {

// Blocks wait for the disk and for the store's queue more than they compute, so a pool may hold a few
// more threads than there are cores without fighting over them.
constexpr int minimumThreads = 4;

QThreadPool &pool(QualityOfService quality)
{
    static const auto pools = [] {
        std::array<std::unique_ptr<QThreadPool>, 3> made;
        for (std::unique_ptr<QThreadPool> &one : made) {
            one = std::make_unique<QThreadPool>();
            one->setMaxThreadCount(std::max(minimumThreads, QThread::idealThreadCount()));
        }
        return made;
    }();
    return *pools[static_cast<std::size_t>(quality)];
}

} // namespace

void GlobalQueue::async(QualityOfService quality, Block block)
{
    pool(quality).start([quality, block = std::move(block)] {
        applyToCurrentThread(quality);
        block();
    });
}

void GlobalQueue::waitUntilIdle()
{
    for (const auto quality :
         {QualityOfService::userInitiated, QualityOfService::utility, QualityOfService::background})
        pool(quality).waitForDone();
}

} // namespace Qorvane
