#pragma once

#include <QTemporaryDir>

namespace Qorvane {

/// Where a test program is at home: a folder of its own that vanishes afterwards, no desktop session to talk
/// to, no window system, a fixed locale. Made before the application.
class TestHome
{
public:
    TestHome();

    /// False when there is no place for temporary folders.
    bool isValid() const { return m_folder.isValid(); }

private:
    QTemporaryDir m_folder;
};

} // namespace Qorvane
