#include "clip/TextEncoderGate.h"

#include "semantic/EncoderLoading.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace Qorvane {

namespace {

// Of "red", in the test encoders' English vocabulary; see tests/encoders/make_test_encoders.py.
constexpr qint32 idOfRed = 320;

} // namespace

class TextEncoderGate::State
{
public:
    void pass()
    {
        if (m_isOpen)
            return;
        m_isReached = true;
        m_isOpen.wait(false);
    }
    void open()
    {
        m_isOpen = true;
        m_isOpen.notify_all();
    }
    bool isReached() const { return m_isReached; }

    /// An encoder that is `encoder` but for the gate before it.
    static std::shared_ptr<const TextEncoder> gated(std::shared_ptr<const TextEncoder> encoder,
                                                    std::shared_ptr<State> state);

private:
    std::atomic_bool m_isOpen = false;
    std::atomic_bool m_isReached = false;
};

std::shared_ptr<const TextEncoder> TextEncoderGate::State::gated(std::shared_ptr<const TextEncoder> encoder,
                                                                 std::shared_ptr<State> state)
{
    class Gated : public TextEncoder
    {
    public:
        Gated(std::shared_ptr<const TextEncoder> encoder, std::shared_ptr<State> state)
            : m_encoder(std::move(encoder))
            , m_state(std::move(state))
        {
        }

        EncoderResult predict(const std::vector<qint32> &ids, const std::vector<qint32> &mask) const override
        {
            if (std::ranges::find(ids, idOfRed) == ids.end())
                m_state->pass();
            return m_encoder->predict(ids, mask);
        }

    private:
        const std::shared_ptr<const TextEncoder> m_encoder;
        const std::shared_ptr<State> m_state;
    };
    return std::make_shared<Gated>(std::move(encoder), std::move(state));
}

TextEncoderGate::TextEncoderGate()
    : m_state(std::make_shared<State>())
{
    wrapTextEncodersForTests([state = m_state](std::shared_ptr<const TextEncoder> encoder) {
        return State::gated(std::move(encoder), state);
    });
}

TextEncoderGate::~TextEncoderGate()
{
    wrapTextEncodersForTests({});
    open();
}

bool TextEncoderGate::isReached() const
{
    return m_state->isReached();
}

void TextEncoderGate::open()
{
    m_state->open();
}

} // namespace Qorvane
