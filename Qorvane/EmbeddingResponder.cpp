#include "EmbeddingResponder.h"

#include "ChineseClipService.h"
#include "media/EmbeddingMessages.h"

#include <QPointer>

namespace Qorvane {

EmbeddingResponder::EmbeddingResponder(ChineseClipService &service, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_observation(NotificationCenter::defaultCenter().addObserver(
          EmbeddingMessages::requestName, ObserverQueue::main,
          [this](const Notification &request) { answer(request); }))
{
}

EmbeddingResponder::~EmbeddingResponder()
{
    NotificationCenter::defaultCenter().removeObserver(m_observation);
}

QCoro::Task<> EmbeddingResponder::answer(Notification request)
{
    const QVariant id = request.userInfo.value(EmbeddingMessages::idKey);
    const QVariant image = request.userInfo.value(EmbeddingMessages::imageKey);
    if (id.metaType() != QMetaType::fromType<QString>() || image.metaType() != QMetaType::fromType<Image>())
        co_return;
    const QPointer<ChineseClipService> service(&m_service);
    co_await service->ensureModelsLoaded();
    if (!service)
        co_return;
    const QVariant filename = request.userInfo.value(EmbeddingMessages::filenameKey);
    const auto label = filename.isValid() ? std::optional(filename.toString()) : std::nullopt;
    const auto vector = co_await service->extractImageFeatures(image.value<Image>(), label);
    NotificationCenter::defaultCenter().post(
        EmbeddingMessages::responseName,
        {{EmbeddingMessages::idKey, id},
         {EmbeddingMessages::vectorKey,
          QVariant::fromValue(vector.value_or(EmbeddingMessages::EmbeddingVector{}))}});
}

} // namespace Qorvane
