#pragma once

#include <QImage>

namespace Qorvane {

// Drawings plain enough for the starter pair to know what they show.

QImage drawnClock();
QImage drawnTrafficLight();
QImage drawnCrossword();
QImage drawnHoneycomb();

} // namespace Qorvane
