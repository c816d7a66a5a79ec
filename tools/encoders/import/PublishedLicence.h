#pragma once

#include "encoders/layout/ModelFolder.h"

#include <QByteArray>

namespace Qorvane::Encoders {

/// The licence text that lies with a model, or else what its README.md says of the licence in its head; empty
/// when neither says anything. Reads the disk; any thread.
QByteArray publishedLicence(const ModelFolder &folder);

} // namespace Qorvane::Encoders
