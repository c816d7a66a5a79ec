#include "platform/TerminationSignals.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

using namespace Qorvane;

namespace {

TEST(TerminationSignals, areToldOnTheEventLoop)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const TerminationSignals listener;
        int count = 0;
        QObject::connect(&listener, &TerminationSignals::received, [&count] { ++count; });
        ASSERT_EQ(std::raise(number), 0);
        EXPECT_EQ(count, 0);
        EXPECT_TRUE(waitUntil([&count] { return count == 1; })) << number;
    }
}

TEST(TerminationSignals, whatTheStarterIgnoresStaysIgnored)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    const TerminationSignals listener;
    int count = 0;
    QObject::connect(&listener, &TerminationSignals::received, [&count] { ++count; });
    std::raise(SIGHUP);
    drainMainQueue();
    EXPECT_EQ(count, 0);
    std::signal(SIGHUP, before);
}

// Last, since the process that it forks shares the wake-up call.
TEST(TerminationSignals, aSecondOneEndsAProcessThatDoesNotListen)
{
    EXPECT_EXIT(
        {
            const TerminationSignals listener;
            std::raise(SIGTERM);
            std::raise(SIGTERM);
            std::exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
}

} // namespace
