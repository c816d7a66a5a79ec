#include "headless/CommandLine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

using Action = HeadlessCommand::Action;

HeadlessCommand commandOf(const QStringList &arguments)
{
    const auto result = readCommandLine(QStringList{QStringLiteral("qorvane-headless")} + arguments);
    if (const auto *answer = std::get_if<CommandLineAnswer>(&result)) {
        ADD_FAILURE() << qPrintable(answer->text);
        return {};
    }
    return std::get<HeadlessCommand>(result);
}

QString errorOf(const QStringList &arguments)
{
    const auto result = readCommandLine(QStringList{QStringLiteral("qorvane-headless")} + arguments);
    const auto *answer = std::get_if<CommandLineAnswer>(&result);
    if (answer == nullptr || !answer->isError) {
        ADD_FAILURE() << "taken as right";
        return {};
    }
    return answer->text;
}

} // namespace

TEST(CommandLineTest, MakesFolderPathsAbsoluteAndNamesEachOnce)
{
    const QTemporaryDir folder;
    const QString dotted = folder.path() + QStringLiteral("/../") + QDir(folder.path()).dirName() + u'/';
    const HeadlessCommand command = commandOf({QStringLiteral("index"), dotted, folder.path()});
    EXPECT_EQ(command.action, Action::index);
    EXPECT_EQ(command.folders, QStringList{folder.path()});
}

TEST(CommandLineTest, RefusesAFolderThatIsNotThere)
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath(QStringLiteral("missing"));
    EXPECT_TRUE(errorOf({QStringLiteral("add"), folder.path(), missing}).contains(missing));
}

TEST(CommandLineTest, AsksForAFolder)
{
    EXPECT_FALSE(errorOf({QStringLiteral("index")}).isEmpty());
}

TEST(CommandLineTest, JoinsTheWordsOfAQuery)
{
    const HeadlessCommand command =
        commandOf({QStringLiteral("search"), QStringLiteral("blue"), QStringLiteral("sky")});
    EXPECT_EQ(command.action, Action::search);
    EXPECT_EQ(command.query, QStringLiteral("blue sky"));
    EXPECT_EQ(command.limit, 20);
}

TEST(CommandLineTest, TakesTheLastOperandOfASheetAsItsFile)
{
    const HeadlessCommand command = commandOf({QStringLiteral("sheet"), QStringLiteral("blue"),
                                               QStringLiteral("sky"), QStringLiteral("/tmp/out.png")});
    EXPECT_EQ(command.query, QStringLiteral("blue sky"));
    EXPECT_EQ(command.outputPath, QStringLiteral("/tmp/out.png"));
}

TEST(CommandLineTest, TakesASheetOfTheWholeLibrary)
{
    const HeadlessCommand command =
        commandOf({QStringLiteral("sheet"), QStringLiteral("--all"), QStringLiteral("/tmp/out.png")});
    EXPECT_TRUE(command.query.isEmpty());
    EXPECT_EQ(command.limit, 200);
}

TEST(CommandLineTest, RefusesASheetWithoutAQueryOrWithoutAFile)
{
    EXPECT_FALSE(errorOf({QStringLiteral("sheet"), QStringLiteral("/tmp/out.png")}).isEmpty());
    EXPECT_FALSE(errorOf({QStringLiteral("sheet"), QStringLiteral("--all")}).isEmpty());
}

TEST(CommandLineTest, TakesLimitAndLog)
{
    const HeadlessCommand command =
        commandOf({QStringLiteral("search"), QStringLiteral("-n"), QStringLiteral("3"),
                   QStringLiteral("--log"), QStringLiteral("/tmp/a.log"), QStringLiteral("red")});
    EXPECT_EQ(command.limit, 3);
    EXPECT_EQ(command.logPath, QStringLiteral("/tmp/a.log"));
    EXPECT_FALSE(command.isVerbose);
}

TEST(CommandLineTest, RefusesALimitThatIsNoCount)
{
    for (const char *limit : {"0", "-1", "many"}) {
        EXPECT_FALSE(errorOf({QStringLiteral("search"),
                              QStringLiteral("--limit=") + QString::fromLatin1(limit), QStringLiteral("red")})
                         .isEmpty())
            << limit;
    }
}

TEST(CommandLineTest, TakesThePicturesToRecommendFor)
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("a.jpg"));
    ASSERT_TRUE(QFile(picture).open(QIODevice::WriteOnly));
    const QStringList arguments{QStringLiteral("recommend"), picture, picture};
    const HeadlessCommand command = commandOf(arguments);
    EXPECT_EQ(command.action, Action::recommend);
    EXPECT_EQ(command.files, QStringList(picture));
    EXPECT_EQ(command.limit, 5);
    EXPECT_EQ(commandOf(arguments + QStringList(QStringLiteral("--limit=8"))).limit, 8);
    EXPECT_FALSE(errorOf({QStringLiteral("recommend")}).isEmpty());
    const QString missing = folder.filePath(QStringLiteral("missing.jpg"));
    EXPECT_TRUE(errorOf({QStringLiteral("recommend"), picture, missing}).contains(missing));
    EXPECT_FALSE(errorOf({QStringLiteral("recommend"), folder.path()}).isEmpty());
}

TEST(CommandLineTest, RefusesUnknownCommandsAndOptions)
{
    EXPECT_TRUE(errorOf({QStringLiteral("paint")}).contains(QStringLiteral("paint")));
    EXPECT_FALSE(errorOf({QStringLiteral("status"), QStringLiteral("--fast")}).isEmpty());
    EXPECT_FALSE(errorOf({QStringLiteral("status"), QStringLiteral("now")}).isEmpty());
    EXPECT_FALSE(errorOf({}).isEmpty());
}

TEST(CommandLineTest, ExplainsItselfWithoutCallingThatAnError)
{
    const auto result = readCommandLine({QStringLiteral("qorvane-headless"), QStringLiteral("--help")});
    const auto *answer = std::get_if<CommandLineAnswer>(&result);
    ASSERT_NE(answer, nullptr);
    EXPECT_FALSE(answer->isError);
    for (const char *command : {"index", "add", "search", "sheet", "status", "recommend"})
        EXPECT_TRUE(answer->text.contains(QLatin1String(command))) << command;
}
