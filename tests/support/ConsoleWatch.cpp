#include "support/ConsoleWatch.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <mutex>

namespace Qorvane {

namespace {

// A thread may be about to write its line when the watch ends, so these stay.
std::mutex linesMutex;
QStringList lines;

void collect(QtMsgType, const QMessageLogContext &, const QString &text)
{
    const std::scoped_lock lock(linesMutex);
    lines.append(text);
}

} // namespace

ConsoleWatch::ConsoleWatch()
{
    const std::scoped_lock lock(linesMutex);
    lines.clear();
    qInstallMessageHandler(collect);
}

ConsoleWatch::~ConsoleWatch()
{
    qInstallMessageHandler(nullptr);
    const std::scoped_lock lock(linesMutex);
    EXPECT_TRUE(lines.isEmpty()) << lines.join(QLatin1Char('\n')).toStdString();
}

} // namespace Qorvane
