#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>

/// What came of one file.
enum class Outcome {
    decoded,
    refused,
    timedOut, ///< gave up for lack of time, or had to be stopped
    crashed,
};

/// As the report's lines call it.
QString outcomeName(Outcome outcome);

struct Attempt
{
    Outcome outcome = Outcome::refused;
    QString detail;
    qint64 milliseconds = 0;
    long peakKilobytes = 0;
};

/// The time after which an attempt counts as timed out though it ended by itself, and the further time after
/// which it is stopped.
struct TimeAllowed
{
    std::chrono::milliseconds toGiveUp;
    std::chrono::milliseconds toEnd;
};

/// Calls `decode` in a process of its own, so that a crash or a hang counts and harms nothing else. It
/// returns
/// "+" and what it decoded, or "-" and the reason. For programs of one thread: others can't be copied whole.
Attempt attemptInChild(const std::function<QByteArray()> &decode, const TimeAllowed &allowed);
