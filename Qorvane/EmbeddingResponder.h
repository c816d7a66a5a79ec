#pragma once

#include "platform/NotificationCenter.h"

#include <QCoroTask>
#include <QList>
#include <QObject>

namespace Qorvane {

class ChineseClipService;

/// Answers "ComputeEmbeddingRequest" (media/EmbeddingMessages.h) with the encoders of a `ChineseClipService`,
/// for as long as it lives. Without one nobody answers, and the requesting side gives up after its time.
/// The first request has the encoders loaded unless somebody has tried before; requests that find
/// the encoders not loaded yet are answered when they are, in their order. Lives on the GUI thread.
class EmbeddingResponder : public QObject
{
    Q_OBJECT

public:
    /// `service` must outlive this.
    explicit EmbeddingResponder(ChineseClipService &service, QObject *parent = nullptr);
    ~EmbeddingResponder() override;

private:
    void take(const Notification &request);
    bool hasToWait() const;
    void answerWaiting();
    QCoro::Task<> answer(Notification request);

    ChineseClipService &m_service;
    QList<Notification> m_waiting; ///< for the encoders that are being loaded
    NotificationCenter::Token m_observation;
};

} // namespace Qorvane
