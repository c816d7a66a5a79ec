#pragma once

#include "media/EmbeddingMessages.h"
#include "media/Image.h"
#include "platform/NotificationCenter.h"

#include <QStringList>

#include <functional>

namespace Qorvane {

/// Answers embedding requests on the GUI thread as the main window would, with a vector made from the
/// picture. While it holds, it only keeps the requests.
class FakeEncoder
{
public:
    FakeEncoder();
    ~FakeEncoder();
    FakeEncoder(const FakeEncoder &) = delete;
    FakeEncoder &operator=(const FakeEncoder &) = delete;

    /// Mean red, green and blue, 0 to 1.
    static EmbeddingMessages::EmbeddingVector vectorOf(const Image &image);

    /// Called with the file's name before it is answered.
    std::function<void(const QString &filename)> onRequest;
    /// What stands under "vector"; the picture's vector unless set.
    std::function<QVariant(const Image &image)> answer;
    bool isHolding = false;

    /// The requests so far, by file name.
    const QStringList &filenames() const { return m_filenames; }
    const QList<Notification> &held() const { return m_held; }
    /// Answers the oldest of the held requests.
    void release();
    void respond(const Notification &request) const;

private:
    void receive(const Notification &request);

    QStringList m_filenames;
    QList<Notification> m_held;
    NotificationCenter::Token m_token;
};

} // namespace Qorvane
