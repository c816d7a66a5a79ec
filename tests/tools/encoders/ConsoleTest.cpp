#include "encoders/Console.h"

#include "tools/encoders/ConsoleText.h"

#include <gtest/gtest.h>

using namespace Qorvane::Encoders;

TEST(EncodersConsole, resultsAndMessagesGoToStreamsOfTheirOwn)
{
    ConsoleText text;
    text.console().print(QStringLiteral("结果"));
    text.console().note(QStringLiteral("a note"));
    EXPECT_EQ(text.results(), QStringLiteral("结果\n"));
    EXPECT_EQ(text.messages(), QStringLiteral("a note\n"));
}

TEST(EncodersConsole, aProblemSaysWhatWasExpectedFoundAndWhatToDo)
{
    ConsoleText text;
    const int code = text.console().report(
        {QStringLiteral("a graph"), QStringLiteral("a text"), QStringLiteral("name another file")});
    EXPECT_EQ(code, ExitCode::failure);
    EXPECT_EQ(text.messages(),
              QStringLiteral("qorvane-encoders: expected a graph; found a text; name another file\n"));
}

TEST(EncodersConsole, progressInALogIsALineForEveryQuarterOfAnActivity)
{
    ConsoleText text;
    for (int percent = 0; percent <= 100; ++percent)
        text.console().showProgress(percent / 100.0, QStringLiteral("pictures"));
    text.console().finishProgress();
    EXPECT_EQ(
        text.messages(),
        QStringLiteral("pictures: 0 %\npictures: 25 %\npictures: 50 %\npictures: 75 %\npictures: 100 %\n"));
}

TEST(EncodersConsole, progressOnATerminalIsDrawnOverAndEndsBeforeTheNextLine)
{
    ConsoleText text(true);
    text.console().showProgress(0, QStringLiteral("long activity"));
    text.console().showProgress(0.5, QStringLiteral("short"));
    text.console().note(QStringLiteral("done"));
    const QString dashes(15, u'-');
    EXPECT_EQ(text.messages(),
              QStringLiteral("\r[%1%1]   0 %  long activity\r[%2%1]  50 %  short        \ndone\n")
                  .arg(dashes, QString(15, u'#')));
}

TEST(EncodersConsole, fractionsBeyondTheEndsCountAsTheNearerEnd)
{
    ConsoleText text;
    text.console().showProgress(-1, QStringLiteral("a"));
    text.console().showProgress(std::numeric_limits<double>::quiet_NaN(), QStringLiteral("b"));
    text.console().showProgress(7, QStringLiteral("c"));
    EXPECT_EQ(text.messages(), QStringLiteral("a: 0 %\nb: 0 %\nc: 100 %\n"));
}
