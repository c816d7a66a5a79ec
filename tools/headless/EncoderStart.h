#pragma once

#include <QCoroTask>

namespace Qorvane {

class ChineseClipService;

/// Has the encoders loaded, and tells whether they are there as soon as that is known. The tags of the whole
/// vocabulary, which the service goes on to precompute, are of no use to most commands: what is left of them
/// when a command ends is done by the next. GUI thread.
QCoro::Task<bool> startEncoders(ChineseClipService &service);

} // namespace Qorvane
