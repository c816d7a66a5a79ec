#pragma once

#include "semantic/Encoder.h"
#include "semantic/EncoderFiles.h"

#include <memory>

namespace Qorvane {

/// The two encoders; none for one that couldn't be loaded.
struct EncoderPair
{
    std::shared_ptr<const VisionEncoder> vision;
    std::shared_ptr<const TextEncoder> text;

    bool isComplete() const { return vision && text; }
};

/// Loads the vision encoder and then the text encoder, with a log line for each; one without a file is passed
/// over silently. Takes seconds for large encoders; not on the GUI thread.
EncoderPair loadEncoders(const EncoderFiles &files);

} // namespace Qorvane
