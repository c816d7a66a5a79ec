#pragma once

#include "semantic/Encoder.h"
#include "semantic/EncoderFiles.h"

#include <functional>
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

/// Gives an encoder to take a loaded one's place.
using TextEncoderWrapper =
    std::function<std::shared_ptr<const TextEncoder>(std::shared_ptr<const TextEncoder>)>;

/// Lets `loadEncoders` give what `wrapper` makes of each text encoder it loads, until this is called with an
/// empty one. Any thread.
void wrapTextEncodersForTests(TextEncoderWrapper wrapper);

} // namespace Qorvane
