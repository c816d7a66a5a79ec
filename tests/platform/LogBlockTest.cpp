#include "platform/Log.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(LogBlock, reachesASinkLineByLine)
{
    const LogCapture log;
    Log::lines("first\n\n山 third\nlast without end");
    EXPECT_EQ(log.lines(), QStringList({QStringLiteral("first"), QString(), QStringLiteral("山 third"),
                                        QStringLiteral("last without end")}));
}

TEST(LogBlock, emptyBlocksSayNothing)
{
    const LogCapture log;
    Log::lines({});
    EXPECT_EQ(log.lines(), QStringList());
}

TEST(LogBlock, goesToStandardOutputAsItIs)
{
    testing::internal::CaptureStdout();
    Log::lines("🔍 one\ntwo\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "🔍 one\ntwo\n");
}
