#pragma once

#include <QQuickImageProvider>

namespace Qorvane {

/// Draws the shadow of a rounded rectangle, as the source "image://shadow/<radius>/<layers>/<colour>", radius
/// in logical pixels and the colour being its name without the "#". It is made of so many ever larger layers
/// of that translucent colour, the software scene graph having no blur; drawn once, since a popup that fades
/// would blend all of them anew with every frame.
///
/// The picture is the smallest that has all of the edge: a square of equal borders around a middle of a
/// single pixel, which a border image stretches. GUI thread.
class ShadowProvider : public QQuickImageProvider
{
public:
    static constexpr auto providerId = "shadow";

    ShadowProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace Qorvane
