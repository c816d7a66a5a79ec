#include "encoders/CommandLine.h"
#include "encoders/Console.h"
#include "encoders/TestEncoders.h"
#include "tools/encoders/ConsoleText.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

using namespace Qorvane;
using namespace Qorvane::Encoders;

namespace {

// Plain pictures in colours that the tests' encoders know, and a table that names them.
class CompareCommand : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
        ASSERT_TRUE(installTestFamily(QStringLiteral("chinese")));
        QByteArray table("path\tset\tlabels_en\tlabels_zh\tcaptions_en\n");
        for (int number = 0; number < 3; ++number) {
            addPicture(QStringLiteral("red%1.png").arg(number), Qt::red);
            addPicture(QStringLiteral("blue%1.png").arg(number), Qt::blue);
            table += "pictures/red" + QByteArray::number(number) + ".png\ta\tred\t红色\t" +
                     (number == 0 ? "red" : "") + "\n";
            table += "pictures/blue" + QByteArray::number(number) + ".png\tb\tblue\t蓝色\t" +
                     (number == 0 ? "blue" : "") + "\n";
        }
        writeTable(table);
    }

    void TearDown() override { removeInstalledEncoders(); }

    void addPicture(const QString &name, const QColor &colour)
    {
        QDir(m_home.path()).mkpath(QStringLiteral("pictures"));
        ASSERT_TRUE(plainPicture(colour).save(picturesFolder() + u'/' + name));
    }

    void writeTable(const QByteArray &table)
    {
        QFile file(m_home.filePath(QStringLiteral("table.tsv")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(table);
    }

    QString picturesFolder() const { return m_home.filePath(QStringLiteral("pictures")); }

    int run(std::initializer_list<QString> more = {})
    {
        std::vector<std::string> arguments{"qorvane-encoders", "compare", picturesFolder().toStdString(),
                                           "--captions",
                                           m_home.filePath(QStringLiteral("table.tsv")).toStdString()};
        for (const QString &argument : more)
            arguments.push_back(argument.toStdString());
        std::vector<const char *> pointers;
        for (const std::string &argument : arguments)
            pointers.push_back(argument.c_str());
        return runCommandLine(int(pointers.size()), pointers.data(), m_text.console());
    }

    QTemporaryDir m_home;
    ConsoleText m_text;
};

} // namespace

TEST_F(CompareCommand, encodersThatKnowTheColoursScoreFully)
{
    ASSERT_EQ(run(), ExitCode::success) << qPrintable(m_text.messages());
    const QString results = m_text.results();
    EXPECT_TRUE(results.contains(
        QStringLiteral("categories: mAP 1.000 (2 categories of 3 or more, among 6 pictures)")))
        << qPrintable(results);
    EXPECT_TRUE(results.contains(QStringLiteral("recall 1.000"))) << qPrintable(results);
    EXPECT_TRUE(results.contains(QStringLiteral("first captions among 2 pictures: R@1 1.000")))
        << qPrintable(results);
    EXPECT_TRUE(results.contains(QStringLiteral("nonsense"))) << qPrintable(results);
}

TEST_F(CompareCommand, theOtherLanguageHasLabelsAndEncodersOfItsOwn)
{
    ASSERT_EQ(run({QStringLiteral("--language"), QStringLiteral("zh")}), ExitCode::success)
        << qPrintable(m_text.messages());
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("ChineseClipVisionEncoder.onnx")));
    EXPECT_TRUE(m_text.results().contains(QStringLiteral("categories: mAP 1.000 (2 categories")))
        << qPrintable(m_text.results());
    EXPECT_TRUE(m_text.results().contains(QStringLiteral("captions: no picture has one")));
}

TEST_F(CompareCommand, aSetAndAFolderOfEncodersCanBeChosenAndFiguresWritten)
{
    removeInstalledEncoders();
    const QString json = m_home.filePath(QStringLiteral("figures.json"));
    ASSERT_EQ(run({QStringLiteral("--set"), QStringLiteral("b"), QStringLiteral("--json"), json,
                   QStringLiteral("--models"),
                   QFileInfo(testEncoderPath(QStringLiteral("openai/vocab.json"))).path()}),
              ExitCode::success)
        << qPrintable(m_text.messages());
    QFile file(json);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonDocument figures = QJsonDocument::fromJson(file.readAll());
    EXPECT_EQ(figures[QStringLiteral("categories")][QStringLiteral("pictures")].toInt(), 3);
}

TEST_F(CompareCommand, whatIsNotFoundOrNotReadableIsNamedAndLeftOut)
{
    addPicture(QStringLiteral("broken.png"), Qt::green);
    QFile broken(picturesFolder() + QStringLiteral("/broken.png"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly | QIODevice::Truncate));
    broken.write("no picture");
    broken.close();
    writeTable("path\tlabels_en\nred0.png\tred\nred1.png\tred\nred2.png\tred\nbroken.png\tred\nelsewhere."
               "png\tred\n");
    ASSERT_EQ(run(), ExitCode::success) << qPrintable(m_text.messages());
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("rows without a picture below")))
        << qPrintable(m_text.messages());
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("elsewhere.png")));
    EXPECT_TRUE(m_text.messages().contains(
        QStringLiteral("pictures without a vector: 1 (broken.png); the first: expected ")));
    EXPECT_TRUE(m_text.results().contains(QStringLiteral("among 3 pictures")))
        << qPrintable(m_text.results());
}

TEST_F(CompareCommand, aBrokenTableIsToldByItsLine)
{
    writeTable("path\tset\nred0.png\n");
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("in line 2"))) << qPrintable(m_text.messages());
    EXPECT_EQ(m_text.results(), QString());
}

TEST_F(CompareCommand, aTableOfOtherPicturesIsAProblem)
{
    writeTable("path\nnowhere.png\n");
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("found none of 1 rows")))
        << qPrintable(m_text.messages());
}

TEST_F(CompareCommand, withoutEncodersItSaysWhereItLookedAndWhatToDo)
{
    removeInstalledEncoders();
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("no vision encoder in")))
        << qPrintable(m_text.messages());
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("qorvane-encoders import")));
}

TEST_F(CompareCommand, halfAPairOfEachFamilyIsRefused)
{
    removeInstalledEncoders();
    ASSERT_TRUE(installTestEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx")));
    ASSERT_TRUE(installTestEncoder(QStringLiteral("chinese/ChineseClipTextEncoder.onnx")));
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("expected both encoders of one family")))
        << qPrintable(m_text.messages());
}

TEST_F(CompareCommand, theUsersThumbnailsStayUntouched)
{
    ASSERT_EQ(run(), ExitCode::success);
    EXPECT_FALSE(
        QDir(qEnvironmentVariable("XDG_CACHE_HOME")).exists(QStringLiteral("com.qorvane.thumbnails")));
}

TEST_F(CompareCommand, anUnknownLanguageIsAUsageError)
{
    EXPECT_EQ(run({QStringLiteral("--language"), QStringLiteral("fr")}), ExitCode::usage);
}
