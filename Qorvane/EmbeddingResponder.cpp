#include "EmbeddingResponder.h"

#include "ChineseClipService.h"
#include "media/EmbeddingMessages.h"

#include <utility>

namespace Qorvane {

namespace {

bool isComplete(const Notification &request)
{
    const QVariant id = request.userInfo.value(EmbeddingMessages::idKey);
    const QVariant image = request.userInfo.value(EmbeddingMessages::imageKey);
    return id.metaType() == QMetaType::fromType<QString>() &&
           image.metaType() == QMetaType::fromType<Image>();
}

} // namespace

EmbeddingResponder::EmbeddingResponder(ChineseClipService &service, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_observation(NotificationCenter::defaultCenter().addObserver(
          EmbeddingMessages::requestName, ObserverQueue::main,
          [this](const Notification &request) { take(request); }))
{
    connect(&m_service, &ChineseClipService::modelsLoadedChanged, this, &EmbeddingResponder::answerWaiting);
    connect(&m_service, &ChineseClipService::isLoadingModelsChanged, this,
            &EmbeddingResponder::answerWaiting);
}

EmbeddingResponder::~EmbeddingResponder()
{
    NotificationCenter::defaultCenter().removeObserver(m_observation);
}

void EmbeddingResponder::take(const Notification &request)
{
    if (!isComplete(request))
        return;
    // Once only: a run asks for every one of its pictures, and without encoders each would have all the
    // folders searched, and a broken encoder read, once more. A search or the window may load them later.
    if (!m_service.hasTriedLoading())
        m_service.ensureModelsLoaded();
    if (hasToWait())
        m_waiting.append(request);
    else
        answer(request);
}

// A load isn't over before the predefined tags are precomputed, but pictures can be embedded from the moment
// the encoders are there.
bool EmbeddingResponder::hasToWait() const
{
    return m_service.isLoadingModels() && !m_service.modelsLoaded();
}

void EmbeddingResponder::answerWaiting()
{
    if (hasToWait())
        return;
    const QList<Notification> waiting = std::exchange(m_waiting, {});
    for (const Notification &request : waiting)
        answer(request);
}

QCoro::Task<> EmbeddingResponder::answer(Notification request)
{
    const QVariant filename = request.userInfo.value(EmbeddingMessages::filenameKey);
    const auto label = filename.isValid() ? std::optional(filename.toString()) : std::nullopt;
    const Image image = request.userInfo.value(EmbeddingMessages::imageKey).value<Image>();
    const auto vector = co_await m_service.extractImageFeatures(image, label);
    // This may be gone by now, and its service with it.
    NotificationCenter::defaultCenter().post(
        EmbeddingMessages::responseName,
        {{EmbeddingMessages::idKey, request.userInfo.value(EmbeddingMessages::idKey)},
         {EmbeddingMessages::vectorKey,
          QVariant::fromValue(vector.value_or(EmbeddingMessages::EmbeddingVector{}))}});
}

} // namespace Qorvane
