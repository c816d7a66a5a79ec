#include "tools/DriverHome.h"

#include "encoders/TestEncoders.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace Qorvane {

namespace {

// Far beyond any run of the tests, also under a sanitizer: only a hang takes that long.
constexpr int longestRun = 300'000;

} // namespace

DriverHome::DriverHome()
{
    for (const char *name : {"data", "cache", "config", "photographs"})
        QDir(m_place.path()).mkpath(QString::fromLatin1(name));
}

bool DriverHome::installEncoders() const
{
    const QString models = path("data/Qorvane/models");
    if (!QDir().mkpath(models))
        return false;
    for (const char *name : {"ClipVisionEncoder.onnx", "ClipTextEncoder.onnx", "vocab.json"}) {
        const QString file = QString::fromLatin1(name);
        if (!QFile::copy(testEncoderPath(QStringLiteral("openai/") + file), models + u'/' + file))
            return false;
    }
    return true;
}

void DriverHome::forgetLibrary() const
{
    for (const char *suffix : {"", "-journal"})
        QFile::remove(databasePath() + QString::fromLatin1(suffix));
    for (const char *name : {"cache", "config"}) {
        QDir folder(path(name));
        folder.removeRecursively();
        folder.mkpath(QStringLiteral("."));
    }
}

std::unique_ptr<QProcess> DriverHome::start(const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), path("data"));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), path("cache"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(QORVANE_HEADLESS), arguments);
    EXPECT_TRUE(process->waitForStarted()) << qPrintable(process->errorString());
    return process;
}

DriverOutcome DriverHome::run(const QStringList &arguments) const
{
    const std::unique_ptr<QProcess> process = start(arguments);
    if (!process->waitForFinished(longestRun)) {
        ADD_FAILURE() << "the driver did not end: " << qPrintable(arguments.join(u' '));
        process->kill();
        process->waitForFinished();
    }
    const int code = process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1;
    return {code, QString::fromUtf8(process->readAllStandardOutput()),
            QString::fromUtf8(process->readAllStandardError())};
}

} // namespace Qorvane
