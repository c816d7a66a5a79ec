#include "platform/DetachedTask.h"

#include "platform/WorkerPools.h"

#include <limits>
#include <memory>
#include <utility>

namespace Qorvane {

namespace {

WorkerPools &pools()
{
    // No task may keep another from starting (a whole folder run is one task), so the pools have no useful
    // limit. Never taken down: that would hold up the end of the process until the last run is through.
    static WorkerPools &instance = *std::make_unique<WorkerPools>(std::numeric_limits<int>::max()).release();
    return instance;
}

} // namespace

TaskHandle DetachedTask::start(QualityOfService quality, Body body)
{
    TaskHandle handle;
    pools().start(quality, [handle, body = std::move(body)] { body(handle); });
    return handle;
}

bool DetachedTask::isIdle()
{
    return pools().isIdle();
}

void DetachedTask::waitUntilIdle()
{
    pools().waitUntilIdle();
}

} // namespace Qorvane
