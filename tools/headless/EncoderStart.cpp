#include "headless/EncoderStart.h"

#include "ChineseClipService.h"

#include <QCoroFuture>
#include <QPromise>

#include <memory>

namespace Qorvane {

QCoro::Task<bool> startEncoders(ChineseClipService &service)
{
    const auto known = std::make_shared<QPromise<void>>();
    known->start();
    const auto look = [known, &service] {
        if (service.modelsLoaded() || !service.isLoadingModels())
            known->finish();
    };
    QObject::connect(&service, &ChineseClipService::modelsLoadedChanged, &service, look);
    QObject::connect(&service, &ChineseClipService::isLoadingModelsChanged, &service, look);
    service.ensureModelsLoaded();
    look();
    const QFuture<void> knowing = known->future();
    co_await knowing;
    co_return service.modelsLoaded();
}

} // namespace Qorvane
