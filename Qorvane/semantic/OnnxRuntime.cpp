#include "semantic/OnnxRuntime.h"

#include <QCoreApplication>
#include <QDir>

#include <dlfcn.h>
#include <onnxruntime_cxx_api.h>

#include <exception>
#include <memory>
#include <mutex>

namespace Qorvane {

namespace {

constexpr char libraryName[] = "libonnxruntime.so.1";
constexpr char telemetryVariable[] = "ORT_DISABLE_TELEMETRY";

// The newest release this program was tried with. Distributions put the minor number into the library's name,
// so the system's own is asked for by each in turn, newest first.
constexpr int newestTriedMinorRelease = 27;

struct CloseLibrary
{
    void operator()(void *library) const { dlclose(library); }
};
using LibraryHandle = std::unique_ptr<void, CloseLibrary>;

struct SharedState
{
    std::mutex mutex;
    std::optional<QStringList> candidates;
    const OnnxRuntime *runtime = nullptr;
};

SharedState &sharedState()
{
    static SharedState state;
    return state;
}

bool isRunFromBuildTree(const QString &programFolder)
{
    return (programFolder + u'/').startsWith(QStringLiteral(QORVANE_BUILD_FOLDER "/"));
}

const OrtApiBase *apiBaseOf(const LibraryHandle &library)
{
    using GetApiBase = const OrtApiBase *(*)();
    const auto getApiBase = reinterpret_cast<GetApiBase>(dlsym(library.get(), "OrtGetApiBase"));
    return getApiBase ? getApiBase() : nullptr;
}

} // namespace

const OnnxRuntime *OnnxRuntime::shared(QString *error)
{
    SharedState &state = sharedState();
    const std::scoped_lock lock(state.mutex);
    if (state.runtime)
        return state.runtime;

    // Later releases than the one we ship carry a telemetry client, which this keeps quiet when set before
    // the environment is made. No more often than needed: other threads may be reading the variables.
    if (!qEnvironmentVariableIsSet(telemetryVariable))
        qputenv(telemetryVariable, "1");
    QStringList reasons;
    for (const QString &candidate : state.candidates.value_or(libraryCandidates())) {
        QString reason;
        state.runtime = open(candidate, &reason);
        if (state.runtime)
            return state.runtime;
        reasons.append(reason);
    }
    if (error) {
        // The first place is the one where an installation has it, so its reason tells most.
        *error =
            QStringLiteral("the inference runtime (%1) can't be used: %2")
                .arg(QLatin1StringView(libraryName), reasons.value(0, QStringLiteral("nowhere to look")));
    }
    return nullptr;
}

QStringList OnnxRuntime::libraryCandidates()
{
    const QString name = QLatin1StringView(libraryName);
    const QString programFolder = QCoreApplication::applicationDirPath();
    QStringList candidates{QDir::cleanPath(programFolder + QStringLiteral("/../lib/qorvane/") + name)};
    if (isRunFromBuildTree(programFolder))
        candidates.append(QStringLiteral(QORVANE_ORT_ROOT "/lib/") + name);
    candidates.append(name);
    for (int minor = newestTriedMinorRelease; minor >= ORT_API_VERSION; --minor)
        candidates.append(name + u'.' + QString::number(minor));
    return candidates;
}

void OnnxRuntime::useLibraries(const QStringList &candidates)
{
    SharedState &state = sharedState();
    const std::scoped_lock lock(state.mutex);
    state.candidates = candidates;
}

const OnnxRuntime *OnnxRuntime::open(const QString &candidate, QString *error)
{
    LibraryHandle library(dlopen(candidate.toLocal8Bit().constData(), RTLD_NOW | RTLD_LOCAL));
    if (!library) {
        *error = QString::fromLocal8Bit(dlerror());
        return nullptr;
    }
    const OrtApiBase *base = apiBaseOf(library);
    if (!base) {
        *error = QStringLiteral("%1: no inference runtime").arg(candidate);
        return nullptr;
    }
    const OrtApi *api = base->GetApi(ORT_API_VERSION);
    if (!api) {
        *error = QStringLiteral("%1: older than release 1.%2").arg(candidate).arg(ORT_API_VERSION);
        return nullptr;
    }
    Ort::InitApi(api);
    try {
        auto environment = std::make_unique<Ort::Env>(ORT_LOGGING_LEVEL_FATAL, "qorvane");
        environment->DisableTelemetryEvents();
        // Never closed: there is no orderly stop, and a run that is still at work when the process ends needs
        // both the library and its environment.
        auto *runtime = new OnnxRuntime;
        runtime->m_libraryPath = candidate;
        runtime->m_release = QString::fromUtf8(base->GetVersionString());
        runtime->m_environment = environment.release();
        static_cast<void>(library.release());
        return runtime;
    } catch (const std::exception &exception) {
        *error = QString::fromUtf8(exception.what());
        return nullptr;
    }
}

} // namespace Qorvane
