#include "headless/LogOutput.h"

#include "platform/Log.h"

namespace Qorvane {

LogOutput::LogOutput(const QString &path, bool isVerbose)
{
    if (isVerbose)
        return;
    if (path.isEmpty()) {
        Log::setSink([](const QString &) {});
        return;
    }
    m_file = std::make_shared<QFile>(path);
    // Unbuffered: the lines before a crash are the ones that matter.
    if (!m_file->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
        m_error = QStringLiteral("%1: %2").arg(path, m_file->errorString());
        Log::setSink([](const QString &) {});
        return;
    }
    Log::setSink([file = m_file](const QString &line) { file->write(line.toUtf8().append('\n')); });
}

LogOutput::~LogOutput()
{
    Log::setSink({});
}

} // namespace Qorvane
