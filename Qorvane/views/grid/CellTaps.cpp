#include "views/grid/CellTaps.h"

namespace Qorvane {

void CellTaps::press(const QString &path)
{
    m_pressed = path;
}

CellTaps::Tap CellTaps::tap(const QString &path, int tapCount)
{
    // What came under the pointer since the press isn't meant.
    if (path.isEmpty() || path != m_pressed) {
        m_tapped.clear();
        return Tap::None;
    }
    m_count = path == m_tapped && tapCount > 1 ? m_count + 1 : 1;
    m_tapped = path;
    switch (m_count) {
    case 1:
        return Tap::Single;
    case 2:
        return Tap::Double;
    default:
        return Tap::None;
    }
}

} // namespace Qorvane
