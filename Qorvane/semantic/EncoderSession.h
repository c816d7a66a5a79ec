#pragma once

#include "semantic/Encoder.h"

#include <onnxruntime_cxx_api.h>

#include <string>

namespace Qorvane {

/// One loaded encoder file and the way it is run. Only the encoders' own source files see this header, since
/// it is the one that shows the runtime's types.
class EncoderSession
{
public:
    struct Input
    {
        const char *name;
        Ort::Value tensor;
    };

    /// `outputName` is the feature that `run` gives. Nothing on failure, with the reason in `error`.
    static std::unique_ptr<EncoderSession> load(const QString &path, const char *outputName, QString *error);

    /// Any thread, any number at once.
    EncoderResult run(const std::vector<Input> &inputs) const;

    /// A tensor that looks at `values` in place, so they must outlive it. An encoder only reads its inputs.
    template <typename Element>
    static Ort::Value tensor(const std::vector<Element> &values, const std::vector<int64_t> &shape)
    {
        const auto memory = Ort::MemoryInfo::CreateCpu(OrtArenaAllocator, OrtMemTypeDefault);
        return Ort::Value::CreateTensor<Element>(memory, const_cast<Element *>(values.data()), values.size(),
                                                 shape.data(), shape.size());
    }

private:
    EncoderSession(Ort::Session session, const char *outputName);

    bool hasOutput() const;

    // The runtime's Run isn't const, yet safe from any number of threads.
    mutable Ort::Session m_session;
    std::string m_outputName;
    std::vector<std::string> m_outputNames;
};

} // namespace Qorvane
