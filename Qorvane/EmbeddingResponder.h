#pragma once

#include "platform/NotificationCenter.h"

#include <QCoroTask>
#include <QObject>

namespace Qorvane {

class ChineseClipService;

/// Answers "ComputeEmbeddingRequest" (media/EmbeddingMessages.h) with the encoders of a `ChineseClipService`,
/// for as long as it lives. Without one nobody answers, and the requesting side gives up after its time.
/// Lives on the GUI thread.
class EmbeddingResponder : public QObject
{
    Q_OBJECT

public:
    /// `service` must outlive this.
    explicit EmbeddingResponder(ChineseClipService &service, QObject *parent = nullptr);
    ~EmbeddingResponder() override;

private:
    QCoro::Task<> answer(Notification request);

    ChineseClipService &m_service;
    NotificationCenter::Token m_observation;
};

} // namespace Qorvane
