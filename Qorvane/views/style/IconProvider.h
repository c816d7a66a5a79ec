#pragma once

#include <QQuickImageProvider>

namespace Qorvane {

/// Draws the program's SVG icons in the asked colour at the asked size, as the source
/// "image://icons/<name>/<colour>/<size>", the colour being its name without the "#", and the size the
/// logical one: what is asked for grows with the screen's density, but the drawing has to stay the same.
/// Tinting here rather than in a shader keeps the icons right on the software scene graph. GUI thread.
class IconProvider : public QQuickImageProvider
{
public:
    static constexpr auto providerId = "icons";

    IconProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace Qorvane
