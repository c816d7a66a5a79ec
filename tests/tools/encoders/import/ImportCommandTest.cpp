#include "encoders/CommandLine.h"
#include "tools/encoders/ConsoleText.h"
#include "tools/encoders/import/ImportFixture.h"

#include <QFileInfo>

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

} // namespace
