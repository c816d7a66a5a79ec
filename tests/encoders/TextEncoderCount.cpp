#include "encoders/TextEncoderCount.h"

#include "semantic/EncoderLoading.h"

#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace Qorvane {

class TextEncoderCount::State
{
public:
    void add(const std::vector<qint32> &ids)
    {
        const std::scoped_lock lock(m_mutex);
        ++m_count;
        m_different.insert(ids);
    }
    int texts() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_count;
    }
    int differentTexts() const
    {
        const std::scoped_lock lock(m_mutex);
        return int(m_different.size());
    }

    /// An encoder that is `encoder`, and counts.
    static std::shared_ptr<const TextEncoder> counted(std::shared_ptr<const TextEncoder> encoder,
                                                      std::shared_ptr<State> state);

private:
    mutable std::mutex m_mutex;
    int m_count = 0;
    std::set<std::vector<qint32>> m_different;
};

std::shared_ptr<const TextEncoder>
TextEncoderCount::State::counted(std::shared_ptr<const TextEncoder> encoder, std::shared_ptr<State> state)
{
    class Counted : public TextEncoder
    {
    public:
        Counted(std::shared_ptr<const TextEncoder> encoder, std::shared_ptr<State> state)
            : m_encoder(std::move(encoder))
            , m_state(std::move(state))
        {
        }

        EncoderResult predict(const std::vector<qint32> &ids, const std::vector<qint32> &mask) const override
        {
            m_state->add(ids);
            return m_encoder->predict(ids, mask);
        }

    private:
        const std::shared_ptr<const TextEncoder> m_encoder;
        const std::shared_ptr<State> m_state;
    };
    return std::make_shared<Counted>(std::move(encoder), std::move(state));
}

TextEncoderCount::TextEncoderCount()
    : m_state(std::make_shared<State>())
{
    wrapTextEncodersForTests([state = m_state](std::shared_ptr<const TextEncoder> encoder) {
        return State::counted(std::move(encoder), state);
    });
}

TextEncoderCount::~TextEncoderCount()
{
    wrapTextEncodersForTests({});
}

int TextEncoderCount::texts() const
{
    return m_state->texts();
}

int TextEncoderCount::differentTexts() const
{
    return m_state->differentTexts();
}

} // namespace Qorvane
