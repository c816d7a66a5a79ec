#include "headless/CommandLine.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

using TagAction = HeadlessCommand::TagAction;

std::variant<HeadlessCommand, CommandLineAnswer> read(const QStringList &arguments)
{
    return readCommandLine(QStringList{QStringLiteral("qorvane-headless")} + arguments);
}

HeadlessCommand commandOf(const QStringList &arguments)
{
    const auto result = read(arguments);
    if (const auto *answer = std::get_if<CommandLineAnswer>(&result)) {
        ADD_FAILURE() << qPrintable(answer->text);
        return {};
    }
    return std::get<HeadlessCommand>(result);
}

} // namespace

TEST(TagCommandLineTest, ReadsTheBeginningOfATag)
{
    const HeadlessCommand all = commandOf({"tags"});
    EXPECT_EQ(all.action, HeadlessCommand::Action::tags);
    EXPECT_EQ(all.tagAction, TagAction::list);
    EXPECT_EQ(all.tag, QString());
    const HeadlessCommand some = commandOf({"tags", " big c", "-n", "7"});
    EXPECT_EQ(some.tag, QStringLiteral("big c"));
    EXPECT_EQ(some.limit, 7);
}

TEST(TagCommandLineTest, ReadsTagsAndFiles)
{
    const HeadlessCommand add = commandOf({"tag", "add", " 山 ", "/p/a.jpg", "b.jpg", "/p/../p/a.jpg"});
    EXPECT_EQ(add.tagAction, TagAction::add);
    EXPECT_EQ(add.tag, QStringLiteral("山"));
    EXPECT_EQ(add.files, QStringList({QStringLiteral("/p/a.jpg"), QDir::currentPath() + "/b.jpg"}));

    const HeadlessCommand rename = commandOf({"tag", "rename", "cat", "dog", "/p/a.jpg"});
    EXPECT_EQ(rename.tagAction, TagAction::rename);
    EXPECT_EQ(rename.tag, QStringLiteral("cat"));
    EXPECT_EQ(rename.newTag, QStringLiteral("dog"));
    EXPECT_EQ(rename.files, QStringList(QStringLiteral("/p/a.jpg")));

    EXPECT_EQ(commandOf({"tag", "remove", "cat", "/p/a.jpg"}).tagAction, TagAction::remove);
    EXPECT_EQ(commandOf({"tag", "delete", "cat"}).tagAction, TagAction::deleteEverywhere);
    EXPECT_EQ(commandOf({"tag", "show", "/p/a.jpg"}).tagAction, TagAction::show);
}

TEST(TagCommandLineTest, TakesTagsThatLookLikeOptionsAfterTwoDashes)
{
    EXPECT_EQ(commandOf({"tag", "--", "add", "-x", "/p/a.jpg"}).tag, QStringLiteral("-x"));
}

TEST(TagCommandLineTest, ReadsStars)
{
    const HeadlessCommand three = commandOf({"rate", "3", "/p/a.jpg"});
    EXPECT_EQ(three.tagAction, TagAction::rate);
    EXPECT_EQ(three.rating, 3);
    EXPECT_EQ(commandOf({"rate", "clear", "/p/a.jpg"}).rating, std::nullopt);
}

TEST(TagCommandLineTest, RefusesWhatIsMissingOrTooMuch)
{
    const QList<QStringList> wrong{
        {"tags", "a", "b"},
        {"tags", " "},
        {"tag"},
        {"tag", "paint", "cat", "/p/a.jpg"},
        {"tag", "add"},
        {"tag", "add", "cat"},
        {"tag", "add", "  ", "/p/a.jpg"},
        {"tag", "add", "cat", ""},
        {"tag", "remove", "cat"},
        {"tag", "rename", "cat"},
        {"tag", "rename", "cat", "dog"},
        {"tag", "rename", "cat", " ", "/p/a.jpg"},
        {"tag", "delete"},
        {"tag", "delete", "cat", "/p/a.jpg"},
        {"tag", "show"},
        {"rate"},
        {"rate", "3"},
        {"rate", "0", "/p/a.jpg"},
        {"rate", "6", "/p/a.jpg"},
        {"rate", "three", "/p/a.jpg"},
        {"rate", "3.5", "/p/a.jpg"},
    };
    for (const QStringList &arguments : wrong) {
        const auto result = read(arguments);
        const auto *answer = std::get_if<CommandLineAnswer>(&result);
        ASSERT_NE(answer, nullptr) << qPrintable(arguments.join(u' '));
        EXPECT_TRUE(answer->isError);
        EXPECT_GT(answer->text.size(), 15) << qPrintable(answer->text);
    }
}

TEST(TagCommandLineTest, NamesTheCommandsInTheHelp)
{
    const auto result = read({"--help"});
    const QString text = std::get<CommandLineAnswer>(result).text;
    for (const char *command :
         {"tags [BEGINNING]", "tag add", "tag remove", "tag rename", "tag delete", "tag show", "rate STARS"})
        EXPECT_TRUE(text.contains(QLatin1String(command))) << command;
}
