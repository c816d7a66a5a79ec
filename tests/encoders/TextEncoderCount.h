#pragma once

#include <memory>

namespace Qorvane {

/// Counts what goes through the text encoders that are loaded while it lives.
class TextEncoderCount
{
public:
    TextEncoderCount();
    ~TextEncoderCount();
    TextEncoderCount(const TextEncoderCount &) = delete;
    TextEncoderCount &operator=(const TextEncoderCount &) = delete;

    /// How many texts were encoded so far. Any thread.
    int texts() const;
    /// The same, but a text that was encoded more than once counts as one. Any thread.
    int differentTexts() const;

private:
    class State;
    std::shared_ptr<State> m_state; // shared with the encoders, which may outlive this
};

} // namespace Qorvane
