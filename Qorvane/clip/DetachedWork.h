#pragma once

#include "platform/DetachedTask.h"
#include "platform/MainQueue.h"

#include <QFuture>
#include <QPromise>

#include <memory>
#include <type_traits>
#include <utility>

namespace Qorvane {

/// Runs `work` as a detached task and gives its result. It is done to its end, also when nobody waits for it
/// any more. The future is finished by the event loop, so that who begins it never finds it over within the
/// same call, however quick it is. Any thread.
template <typename Work>
auto runDetached(QualityOfService quality, Work work) -> QFuture<std::invoke_result_t<Work>>
{
    auto promise = std::make_shared<QPromise<std::invoke_result_t<Work>>>();
    promise->start();
    DetachedTask::start(quality, [promise, work = std::move(work)](const TaskHandle &) {
        promise->addResult(work());
        MainQueue::async([promise] { promise->finish(); });
    });
    return promise->future();
}

} // namespace Qorvane
