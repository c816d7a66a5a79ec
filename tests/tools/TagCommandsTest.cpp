#include "tools/DriverHome.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// Tags and stars as they are given in a terminal, in a library of two pictures.
class TagCommandsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const QString &file : {a, b})
            ASSERT_TRUE(QImage(4, 4, QImage::Format_RGB32).save(file));
        ASSERT_EQ(m_home.run({"add", m_home.photographs()}).code, 0);
    }

    /// What the command prints; it has to succeed.
    QString outputOf(const QStringList &arguments) const
    {
        const DriverOutcome outcome = m_home.run(arguments);
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.errors);
        EXPECT_EQ(outcome.errors, QString());
        return outcome.output;
    }

    /// What the command complains of; it has to fail and to print nothing else.
    QString errorOf(const QStringList &arguments) const
    {
        const DriverOutcome outcome = m_home.run(arguments);
        EXPECT_EQ(outcome.code, 1) << qPrintable(outcome.output);
        EXPECT_EQ(outcome.output, QString());
        return outcome.errors;
    }

    DriverHome m_home;
    const QString a = m_home.photographs() + QStringLiteral("/a.png");
    const QString b = m_home.photographs() + QStringLiteral("/b.png");
};

} // namespace

TEST_F(TagCommandsTest, TagsAreAddedShownListedAndRemoved)
{
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("no tags in use\n"));
    EXPECT_EQ(outputOf({"tag", "add", " sunny day ", a, b}),
              QStringLiteral("added \"sunny day\": %1\nadded \"sunny day\": %2\n").arg(a, b));
    EXPECT_EQ(outputOf({"tag", "add", "山%", a}), QStringLiteral("added \"山%\": %1\n").arg(a));
    EXPECT_EQ(outputOf({"tag", "add", "山%", a}), QStringLiteral("already has \"山%\": %1\n").arg(a));
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     2  sunny day\n     1  山%\n"));
    EXPECT_EQ(outputOf({"tag", "show", a, b}),
              QStringLiteral("%1\n    no stars; \"sunny day\", \"山%\"\n%2\n    no stars; \"sunny day\"\n")
                  .arg(a, b));
    EXPECT_EQ(outputOf({"tag", "remove", "山%", a, b}),
              QStringLiteral("removed \"山%\": %1\ndoesn't have \"山%\": %2\n").arg(a, b));
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     2  sunny day\n"));
}

TEST_F(TagCommandsTest, TagsAreRenamedWhereTheyAre)
{
    outputOf({"tag", "add", "cat", a});
    EXPECT_EQ(outputOf({"tag", "rename", "cat", "dog", a, b}),
              QStringLiteral("renamed \"cat\" to \"dog\": %1\ndoesn't have \"cat\": %2\n").arg(a, b));
    EXPECT_EQ(errorOf({"tag", "rename", "dog", "Dog", a}),
              QStringLiteral(
                  "qorvane-headless: \"dog\" and \"Dog\" differ only in case or in how accents are composed, "
                  "remove the one and add the other: %1\n")
                  .arg(a));
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     1  dog\n"));
}

TEST_F(TagCommandsTest, ARenameThatTheStoreTakesForNoneIsToldOfAsSuch)
{
    const QString composed = QStringLiteral("caf\u00e9");
    const QString apart = QStringLiteral("CAFE\u0301");
    outputOf({"tag", "add", composed, a});
    EXPECT_EQ(errorOf({"tag", "rename", composed, apart, a}),
              QStringLiteral(
                  "qorvane-headless: \"%1\" and \"%2\" differ only in case or in how accents are composed, "
                  "remove the one and add the other: %3\n")
                  .arg(composed, apart, a));
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     1  %1\n").arg(composed));
}

TEST_F(TagCommandsTest, WhatWouldConfuseATerminalIsNotPrinted)
{
    outputOf({"tag", "add", "a\nb\u202ec\u2028d", a});
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     1  a\uFFFDb\uFFFDc\uFFFDd\n"));
}

TEST_F(TagCommandsTest, ATagIsDeletedEverywhere)
{
    outputOf({"tag", "add", "cat", a, b});
    outputOf({"tag", "add", "dog", a});
    EXPECT_EQ(outputOf({"tag", "delete", "cat"}), QStringLiteral("deleted \"cat\" from 2 files\n"));
    EXPECT_EQ(errorOf({"tag", "delete", "cat"}),
              QStringLiteral("qorvane-headless: no file has the tag \"cat\"\n"));
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("     1  dog\n"));
}

TEST_F(TagCommandsTest, ABeginningIsCompletedByTagsInUseAndPredefinedOnes)
{
    outputOf({"tag", "add", "portfolio", a});
    const QStringList lines = outputOf({"tags", "PORT"}).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.value(0), QStringLiteral("     1  portfolio"));
    EXPECT_GE(lines.size(), 2);
    EXPECT_TRUE(lines.value(1).startsWith(QStringLiteral("     0  Port"))) << qPrintable(lines.value(1));
    EXPECT_EQ(outputOf({"tags", "PORT", "-n", "1"}), QStringLiteral("     1  portfolio\n"));
    EXPECT_EQ(outputOf({"tags", "zzz"}), QStringLiteral("no tag begins with \"zzz\"\n"));
}

TEST_F(TagCommandsTest, StarsAreGivenChangedAndCleared)
{
    EXPECT_EQ(outputOf({"rate", "3", a}), QStringLiteral("3 stars: %1\n").arg(a));
    EXPECT_EQ(outputOf({"rate", "3", a}), QStringLiteral("already has 3 stars: %1\n").arg(a));
    EXPECT_EQ(outputOf({"rate", "1", a, b}),
              QStringLiteral("1 star, earlier 3 stars: %1\n1 star: %2\n").arg(a, b));
    EXPECT_EQ(outputOf({"tag", "show", a}), QStringLiteral("%1\n    1 star; no tags\n").arg(a));
    EXPECT_EQ(outputOf({"rate", "clear", a}), QStringLiteral("no stars, earlier 1 star: %1\n").arg(a));
    EXPECT_EQ(outputOf({"rate", "clear", a}), QStringLiteral("already has no stars: %1\n").arg(a));
}

TEST_F(TagCommandsTest, FilesThatCannotBeMeantAreNamedAndNothingIsChanged)
{
    const QString text = m_home.photographs() + QStringLiteral("/note.txt");
    const QString outside = m_home.path("outside.png");
    ASSERT_TRUE(QFile(text).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::copy(a, outside));
    const QString gone = m_home.photographs() + QStringLiteral("/gone.png");
    const QString program = QStringLiteral("qorvane-headless: ");
    const QString reasons =
        program + QStringLiteral("no such file: ") + gone + u'\n' + program +
        QStringLiteral("not a picture or video: ") + text + u'\n' + program +
        QStringLiteral("not a picture or video: ") + m_home.photographs() + u'\n' + program +
        QStringLiteral("not in the library, put its folder in with \"add\" first: ") + outside + u'\n';
    const QStringList files{a, gone, text, m_home.photographs(), outside};
    EXPECT_EQ(errorOf(QStringList{"tag", "add", "cat"} + files), reasons);
    EXPECT_EQ(errorOf(QStringList{"rate", "3"} + files), reasons);
    EXPECT_EQ(errorOf(QStringList{"tag", "show"} + files), reasons);
    EXPECT_EQ(outputOf({"tags"}), QStringLiteral("no tags in use\n"));
    EXPECT_EQ(outputOf({"tag", "show", a}), QStringLiteral("%1\n    no stars; no tags\n").arg(a));
}

TEST_F(TagCommandsTest, AFileThatIsGoneStillLosesItsTagsAndStars)
{
    outputOf({"tag", "add", "cat", a});
    outputOf({"rate", "2", a});
    ASSERT_TRUE(QFile::remove(a));
    EXPECT_TRUE(errorOf({"tag", "add", "dog", a}).contains(QStringLiteral("no such file")));
    EXPECT_EQ(outputOf({"tag", "remove", "cat", a}), QStringLiteral("removed \"cat\": %1\n").arg(a));
    EXPECT_EQ(outputOf({"rate", "clear", a}), QStringLiteral("no stars, earlier 2 stars: %1\n").arg(a));
    EXPECT_TRUE(errorOf({"tag", "show", a}).contains(QStringLiteral("no such file")));
}

TEST_F(TagCommandsTest, WrongArgumentsHaveAnExitCodeOfTheirOwn)
{
    EXPECT_EQ(m_home.run({"tag", "add", "cat"}).code, 2);
    EXPECT_EQ(m_home.run({"rate", "6", a}).code, 2);
    EXPECT_TRUE(m_home.run({"rate", "6", a}).errors.contains(QStringLiteral("not a rating: 6")));
}

TEST_F(TagCommandsTest, ADatabaseThatCannotBeWrittenIsToldOf)
{
    outputOf({"tag", "add", "cat", a});
    ASSERT_TRUE(QFile::remove(m_home.databasePath()));
    ASSERT_TRUE(QDir().mkpath(m_home.databasePath())); // a folder where the file belongs
    const QString reason =
        QStringLiteral("qorvane-headless: can't be stored, --log FILE tells why: %1\n").arg(a);
    EXPECT_EQ(errorOf({"tag", "add", "cat", a}), reason);
    EXPECT_EQ(errorOf({"rate", "3", a}), reason);
}
