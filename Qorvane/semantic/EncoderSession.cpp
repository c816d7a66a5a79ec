#include "semantic/EncoderSession.h"

#include "semantic/OnnxRuntime.h"
#include "semantic/TensorFlattening.h"

#include <QFile>

#include <algorithm>
#include <exception>

namespace Qorvane {

namespace {

Ort::SessionOptions sessionOptions()
{
    Ort::SessionOptions options;
    // Pictures come one at a time from as many callers as there are runs: a thread each is 1.6 times faster
    // on two cores than two threads in one run, and does not collapse on a busy machine.
    options.SetIntraOpNumThreads(1);
    options.SetInterOpNumThreads(1);
    options.SetExecutionMode(ORT_SEQUENTIAL);
    options.SetGraphOptimizationLevel(ORT_ENABLE_ALL);
    // A waiting thread sleeps; it doesn't burn the core that the window needs.
    options.AddConfigEntry("session.intra_op.allow_spinning", "0");
    options.AddConfigEntry("session.inter_op.allow_spinning", "0");
    return options;
}

EncoderResult failed(const std::exception &exception)
{
    return {.outcome = EncoderResult::Outcome::failed,
            .features = {},
            .error = QString::fromUtf8(exception.what())};
}

} // namespace

EncoderSession::EncoderSession(Ort::Session session, const char *outputName)
    : m_session(std::move(session))
    , m_outputName(outputName)
{
    Ort::AllocatorWithDefaultOptions allocator;
    for (size_t index = 0; index < m_session.GetOutputCount(); ++index)
        m_outputNames.emplace_back(m_session.GetOutputNameAllocated(index, allocator).get());
}

std::unique_ptr<EncoderSession> EncoderSession::load(const QString &path, const char *outputName,
                                                     QString *error)
{
    const OnnxRuntime *runtime = OnnxRuntime::shared(error);
    if (!runtime)
        return nullptr;
    try {
        Ort::Session session(runtime->environment(), QFile::encodeName(path).constData(), sessionOptions());
        return std::unique_ptr<EncoderSession>(new EncoderSession(std::move(session), outputName));
    } catch (const std::exception &exception) {
        if (error)
            *error = QString::fromUtf8(exception.what());
        return nullptr;
    }
}

bool EncoderSession::hasOutput() const
{
    return std::ranges::find(m_outputNames, m_outputName) != m_outputNames.end();
}

EncoderResult EncoderSession::run(const std::vector<Input> &inputs) const
{
    std::vector<const char *> inputNames;
    std::vector<OrtValue *> inputValues;
    for (const Input &input : inputs) {
        inputNames.push_back(input.name);
        inputValues.push_back(input.tensor);
    }
    // Without the required output the encoder still runs, on all it has: a failing run is told as such, and
    // before the missing feature is.
    std::vector<const char *> outputNames;
    if (hasOutput()) {
        outputNames.push_back(m_outputName.c_str());
    } else {
        for (const std::string &name : m_outputNames)
            outputNames.push_back(name.c_str());
    }
    try {
        std::vector<OrtValue *> rawOutputs(outputNames.size(), nullptr);
        Ort::ThrowOnError(Ort::GetApi().Run(m_session, nullptr, inputNames.data(), inputValues.data(),
                                            inputNames.size(), outputNames.data(), outputNames.size(),
                                            rawOutputs.data()));
        std::vector<Ort::Value> outputs;
        for (OrtValue *raw : rawOutputs)
            outputs.emplace_back(raw);
        if (!hasOutput())
            return {.outcome = EncoderResult::Outcome::featureMissing, .features = {}, .error = {}};
        std::optional<std::vector<float>> features = flattened(outputs.front());
        if (!features)
            return {.outcome = EncoderResult::Outcome::featureMissing, .features = {}, .error = {}};
        return {.outcome = EncoderResult::Outcome::succeeded, .features = std::move(*features), .error = {}};
    } catch (const std::exception &exception) {
        return failed(exception);
    }
}

} // namespace Qorvane
