#include "library/EmbeddingRequest.h"

#include "platform/NotificationCenter.h"

#include <QUuid>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace Qorvane {

using namespace EmbeddingMessages;

namespace {

/// Where the answer is waited for. Shared with the observer's block, which may run on after the wait is over.
class Answer
{
public:
    void finish(std::optional<EmbeddingVector> vector)
    {
        const std::scoped_lock lock(m_mutex);
        if (m_isFinished)
            return;
        m_isFinished = true;
        m_vector = std::move(vector);
        m_wake.notify_one();
    }

    std::optional<EmbeddingVector> wait(double seconds)
    {
        std::unique_lock lock(m_mutex);
        m_wake.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return m_isFinished; });
        m_isFinished = true;
        return std::move(m_vector);
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isFinished = false;
    std::optional<EmbeddingVector> m_vector;
};

std::optional<EmbeddingVector> vectorIn(const Notification &response)
{
    const QVariant value = response.userInfo.value(vectorKey);
    if (value.metaType() != QMetaType::fromType<EmbeddingVector>())
        return std::nullopt;
    return value.value<EmbeddingVector>();
}

/// Ends the observation with the wait, whichever way that ended.
class Observation
{
public:
    explicit Observation(NotificationCenter::Token token)
        : m_token(std::move(token))
    {
    }
    ~Observation() { NotificationCenter::defaultCenter().removeObserver(m_token); }
    Observation(const Observation &) = delete;
    Observation &operator=(const Observation &) = delete;

private:
    const NotificationCenter::Token m_token;
};

} // namespace

std::optional<EmbeddingVector> EmbeddingRequest::send(const Image &image, const QString &filename) const
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    const QString requestId = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const auto answer = std::make_shared<Answer>();
    const Observation observation(center.addObserver(
        responseName, ObserverQueue::main, [answer, requestId](const Notification &response) {
            const QVariant id = response.userInfo.value(idKey);
            if (id.metaType() == QMetaType::fromType<QString>() && id.toString() == requestId)
                answer->finish(vectorIn(response));
        }));
    center.post(requestName,
                {{idKey, requestId}, {imageKey, QVariant::fromValue(image)}, {filenameKey, filename}});
    // The time is kept here rather than by a timer on the GUI thread: thousands of files answered in time
    // would leave thousands of timers behind, each holding its vector for the rest of its wait.
    return answer->wait(m_timeout);
}

} // namespace Qorvane
