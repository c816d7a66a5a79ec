#include "encoders/CommandLine.h"
#include "encoders/import/ApartProcess.h"
#include "tools/encoders/ConsoleText.h"
#include "tools/encoders/import/ImportFixture.h"

#include <QDir>
#include <QFileInfo>

#include <csignal>
#include <random>

using namespace Qorvane::Encoders;
using namespace Qorvane::Encoders::Synthetic;

namespace {

class ImportCommand : public ImportFixture
{
protected:
    void SetUp() override
    {
        writeModel(published("visual.onnx"), visionModel({}));
        writeModel(published("textual.onnx"), textModel({}));
        writeFile(published("vocab.json"), openaiVocabulary());
    }

    int run(std::vector<std::string> arguments)
    {
        std::vector<const char *> pointers{"qorvane-encoders", "import"};
        for (const std::string &argument : arguments)
            pointers.push_back(argument.c_str());
        return runCommandLine(int(pointers.size()), pointers.data(), m_text.console());
    }

    ConsoleText m_text;
};

TEST_F(ImportCommand, TellsWhatItRecognisedAdaptedAndMissed)
{
    EXPECT_EQ(run({published().toStdString(), "--out", installed().toStdString()}), ExitCode::success);
    const QString results = m_text.results();
    EXPECT_TRUE(results.contains(QStringLiteral(
        "recognised: visual.onnx: pixel_values (float, ? x 3 x 224 x 224) to image_embeds (float, ? x 24)")))
        << results.toStdString();
    EXPECT_TRUE(results.contains(QStringLiteral("recognised: vocabulary: vocab.json, ")));
    EXPECT_TRUE(results.contains(QStringLiteral("adapted: pictures: rows mirrored back")));
    EXPECT_TRUE(results.contains(QStringLiteral("adapted: texts: tokens cast to 64 bits, the mask dropped")));
    EXPECT_TRUE(results.contains(QStringLiteral("mind: no licence text was found")));
    EXPECT_TRUE(results.contains(QStringLiteral("self-test: vectors of 24 numbers")));
    EXPECT_TRUE(QFileInfo::exists(installed("ClipTextEncoder.onnx")));
}

TEST_F(ImportCommand, InstallsWhereTheApplicationLooksWithoutAnotherPlace)
{
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_installed.path()));
    EXPECT_EQ(run({published().toStdString()}), ExitCode::success);
    qputenv("XDG_DATA_HOME", before);
    EXPECT_TRUE(
        QFileInfo::exists(m_installed.filePath(QStringLiteral("Qorvane/models/ClipVisionEncoder.onnx"))));
}

TEST_F(ImportCommand, FailsWithWhatWasExpectedAndFound)
{
    writeFile(published("visual.onnx"), "no model");
    EXPECT_EQ(run({published().toStdString(), "--out", installed().toStdString()}), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("expected an ONNX model in visual.onnx")));
    EXPECT_EQ(m_text.results(), QString());
}

TEST_F(ImportCommand, TakesNoFamilyThatIsNone)
{
    EXPECT_EQ(run({published().toStdString(), "--family", "french"}), ExitCode::usage);
    EXPECT_EQ(run({}), ExitCode::usage);
}

TEST_F(ImportCommand, OutlivesModelsThatEndTheRuntime)
{
    // As a damaged one can: some division by zero, or a jump to nowhere.
    EXPECT_EQ(doneApart([] { return 3; }), 3);
    EXPECT_EQ(doneApart([]() -> int {
                  std::raise(SIGKILL);
                  return 0;
              }),
              std::nullopt);
}

TEST_F(ImportCommand, RefusesDamagedModelsAndGoesOn)
{
    // A small graph, for damage to fall on what matters.
    VisionSpec vision;
    vision.side = 32;
    const std::string whole = visionModel(vision).SerializeAsString();
    // The nodes stand in front, the weights behind.
    constexpr size_t nodesEnd = 1500;
    bool isNumber = false;
    const int asked = qEnvironmentVariableIntValue("QORVANE_DAMAGED_MODELS", &isNumber);
    const int rounds = isNumber ? asked : 40;
    std::mt19937 random(7);
    int refused = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string damaged = whole;
        if (round % 4 == 0)
            damaged.resize(random() % whole.size());
        for (int flips = 0; flips < 3 && !damaged.empty(); ++flips)
            damaged[random() % std::min(damaged.size(), nodesEnd)] ^= static_cast<char>(1u << (random() % 8));
        writeFile(published("visual.onnx"), QByteArray::fromStdString(damaged));
        const int code = run({published().toStdString(), "--out", installed().toStdString()});
        ASSERT_TRUE(code == ExitCode::success || code == ExitCode::failure) << round;
        refused += code == ExitCode::failure;
        QStringList left =
            QDir(m_installed.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        left.removeOne(QStringLiteral("models"));
        ASSERT_EQ(left, QStringList()) << round;
    }
    EXPECT_GT(refused, rounds / 2);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("expected")));
}

} // namespace
