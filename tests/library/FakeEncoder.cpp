#include "library/FakeEncoder.h"

namespace Qorvane {

using namespace EmbeddingMessages;

FakeEncoder::FakeEncoder()
    : answer([](const Image &image) { return QVariant::fromValue(vectorOf(image)); })
    , m_token(NotificationCenter::defaultCenter().addObserver(
          requestName, ObserverQueue::main, [this](const Notification &request) { receive(request); }))
{
}

FakeEncoder::~FakeEncoder()
{
    NotificationCenter::defaultCenter().removeObserver(m_token);
}

EmbeddingVector FakeEncoder::vectorOf(const Image &image)
{
    const QImage pixels = image.pixels();
    double red = 0;
    double green = 0;
    double blue = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            const QColor color = pixels.pixelColor(x, y);
            red += color.redF();
            green += color.greenF();
            blue += color.blueF();
        }
    }
    const double count = double(pixels.width()) * pixels.height();
    return {float(red / count), float(green / count), float(blue / count)};
}

void FakeEncoder::receive(const Notification &request)
{
    const QString filename = request.userInfo.value(filenameKey).toString();
    m_filenames.append(filename);
    if (onRequest)
        onRequest(filename);
    if (isHolding)
        m_held.append(request);
    else
        respond(request);
}

void FakeEncoder::release()
{
    respond(m_held.takeFirst());
}

void FakeEncoder::respond(const Notification &request) const
{
    const auto image = request.userInfo.value(imageKey).value<Image>();
    NotificationCenter::defaultCenter().post(
        responseName, {{idKey, request.userInfo.value(idKey)}, {vectorKey, answer(image)}});
}

} // namespace Qorvane
