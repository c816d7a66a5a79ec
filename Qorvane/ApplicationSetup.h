#pragma once

class QGuiApplication;

namespace Qorvane {

/// Gives the application its names, icon, font and language, and keeps it alive without windows. Once, before
/// anything of the library or of the window. GUI thread.
void setUpApplication(QGuiApplication &application);

} // namespace Qorvane
