#pragma once

#include <QQuickImageProvider>

namespace Qorvane {

/// Draws the shadow of a rounded rectangle, as the source
/// "image://shadow/<radius>/<layers>/<reach>/<width>/<height>/<scale>/<colour>", the colour being its name
/// without the "#". It is made of so many ever larger layers of that translucent colour, the software scene
/// graph having no blur. In logical pixels: the rectangle's radius, how far the picture goes beyond the
/// rectangle on every side, and the picture's size; it has `scale` physical pixels for each. What no shadow
/// has gives no picture. GUI thread.
class ShadowProvider : public QQuickImageProvider
{
public:
    static constexpr auto providerId = "shadow";

    ShadowProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace Qorvane
