#pragma once

#include <memory>

namespace Qorvane {

/// While it lives, the text encoders that are loaded wait at a gate with every text that has not the word
/// "red" in it.
class TextEncoderGate
{
public:
    TextEncoderGate();
    ~TextEncoderGate();
    TextEncoderGate(const TextEncoderGate &) = delete;
    TextEncoderGate &operator=(const TextEncoderGate &) = delete;

    /// Whether a text stands before the gate.
    bool isReached() const;
    /// Opens it for good.
    void open();

private:
    class State;
    std::shared_ptr<State> m_state; // shared with the encoders, which may outlive this
};

} // namespace Qorvane
