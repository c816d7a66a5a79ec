#include "encoders/CommandLine.h"

#include "encoders/Console.h"
#include "tools/encoders/ConsoleText.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qorvane::Encoders;

namespace {

int run(ConsoleText &text, std::vector<const char *> arguments)
{
    arguments.insert(arguments.begin(), "qorvane-encoders");
    return runCommandLine(int(arguments.size()), arguments.data(), text.console());
}

} // namespace

TEST(EncodersCommandLine, helpIsAResultAndNoFailure)
{
    ConsoleText text;
    EXPECT_EQ(run(text, {"--help"}), ExitCode::success);
    EXPECT_TRUE(text.results().contains(QStringLiteral("Usage: qorvane-encoders")))
        << qPrintable(text.results());
    EXPECT_EQ(text.messages(), QString());
}

TEST(EncodersCommandLine, theVersionIsTheProgramsOwn)
{
    ConsoleText text;
    EXPECT_EQ(run(text, {"--version"}), ExitCode::success);
    EXPECT_EQ(text.results(), QStringLiteral("0.1.0\n"));
}

TEST(EncodersCommandLine, unknownArgumentsAreAUsageError)
{
    ConsoleText text;
    EXPECT_EQ(run(text, {"--no-such-option"}), ExitCode::usage);
    EXPECT_EQ(text.results(), QString());
    EXPECT_FALSE(text.messages().isEmpty());
}

TEST(EncodersCommandLine, aMissingCommandIsAUsageError)
{
    ConsoleText text;
    EXPECT_EQ(run(text, {}), ExitCode::usage);
    EXPECT_FALSE(text.messages().isEmpty());
}
