#pragma once

#include <QStringList>

namespace Ort {
struct Env;
}

namespace Qorvane {

/// The inference runtime, opened at run time: the program starts without it, and one binary works with every
/// release that has the calls we use. There is one environment per process, as the runtime wants it.
class OnnxRuntime
{
public:
    /// The opened runtime; the first call opens it. Nothing when no library can be used; why is then put into
    /// `error`, and the next call tries again. Any thread.
    static const OnnxRuntime *shared(QString *error = nullptr);

    /// Where the library is looked for, best first: beside the installed program, in the build tree for a
    /// program that runs from there, then wherever the system keeps it.
    static QStringList libraryCandidates();

    /// Puts `candidates` in place of `libraryCandidates()`. For tests; before the first use.
    static void useLibraries(const QStringList &candidates);

    /// The file the runtime was opened from, or the name the system's loader found it by.
    const QString &libraryPath() const { return m_libraryPath; }
    /// The release, for instance "1.27.0".
    const QString &release() const { return m_release; }
    Ort::Env &environment() const { return *m_environment; }

private:
    OnnxRuntime() = default;

    static const OnnxRuntime *open(const QString &candidate, QString *error);

    QString m_libraryPath;
    QString m_release;
    Ort::Env *m_environment = nullptr;
};

} // namespace Qorvane
