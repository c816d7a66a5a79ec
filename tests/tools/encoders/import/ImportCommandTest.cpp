#include "encoders/CommandLine.h"
#include "encoders/import/ApartProcess.h"
#include "platform/Languages.h"
#include "tools/encoders/ConsoleText.h"
#include "tools/encoders/import/ImportFixture.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
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

/// A tower that goes round in its last step for longer than any computer lives.
onnx::ModelProto endlessModel()
{
    onnx::ModelProto model = visionModel({});
    onnx::GraphProto &graph = *model.mutable_graph();
    graph.clear_output();
    GraphBuilder builder(graph);
    const auto count = builder.int64s("count", {}, std::vector<std::int64_t>{std::int64_t(1) << 60});
    auto &loop =
        builder.node("Loop", {count, "", "image_embeds"}, std::vector<std::string>{"image_features"});
    auto &attribute = *loop.add_attribute();
    attribute.set_name("body");
    attribute.set_type(onnx::AttributeProto::GRAPH);
    attribute.mutable_g()->set_name("body");
    GraphBuilder body(*attribute.mutable_g());
    body.input("round", onnx::TensorProto::INT64, {});
    body.input("goes_on", onnx::TensorProto::BOOL, {});
    body.input("before", onnx::TensorProto::FLOAT, {-1, 24});
    body.node("Identity", {"goes_on"}, std::vector<std::string>{"goes_on_still"});
    body.node("Tanh", {"before"}, std::vector<std::string>{"behind"});
    body.output("goes_on_still", onnx::TensorProto::BOOL, {});
    body.output("behind", onnx::TensorProto::FLOAT, {-1, 24});
    builder.output("image_features", onnx::TensorProto::FLOAT, {-1, 24});
    return model;
}

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

TEST_F(ImportCommand, SaysWhichVocabularyAChineseUserLacks)
{
    const auto restore = qScopeGuard([] { Qorvane::Languages::endOverrideForTests(); });
    const QString lacking = QStringLiteral("mind: your language is Chinese, for which Qorvane takes "
                                           "chinese_vocab.json, and there is none: it will know 16 tokens");
    Qorvane::Languages::overrideForTests({QStringLiteral("en")}, QStringLiteral("en"));
    EXPECT_EQ(run({published().toStdString(), "--out", installed().toStdString()}), ExitCode::success);
    EXPECT_FALSE(m_text.results().contains(lacking));
    Qorvane::Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    EXPECT_EQ(run({published().toStdString(), "--out", installed().toStdString()}), ExitCode::success);
    EXPECT_TRUE(m_text.results().contains(lacking)) << m_text.results().toStdString();
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
    EXPECT_EQ(doneApart([] { return 3; }).code, 3);
    const ApartResult killed = doneApart([]() -> int {
        std::raise(SIGKILL);
        return 0;
    });
    EXPECT_EQ(killed.code, std::nullopt);
    EXPECT_EQ(killed.signal, SIGKILL);
    EXPECT_FALSE(killed.isInterrupted());
    EXPECT_TRUE(apartProblem(killed).found.contains(QStringLiteral("ended the process that tried it")));
}

TEST_F(ImportCommand, EndsModelsThatNeverComeToAnEnd)
{
    const ApartResult late = doneApart(
        []() -> int {
            std::atomic_uint round = 0;
            for (;;)
                ++round;
        },
        std::chrono::seconds(1));
    EXPECT_EQ(late.signal, SIGXCPU);
    EXPECT_TRUE(apartProblem(late).found.contains(QStringLiteral("10 minutes of the processor's time")));
}

TEST_F(ImportCommand, HandsTheWishToEndToTheCopyAndLivesOn)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const ApartResult interrupted = doneApart([signal]() -> int {
            kill(getppid(), signal);
            for (;;)
                pause();
        });
        EXPECT_EQ(interrupted.code, std::nullopt);
        EXPECT_EQ(interrupted.signal, signal);
        EXPECT_TRUE(interrupted.isInterrupted());
        EXPECT_TRUE(apartProblem(interrupted).found.contains(QStringLiteral("interrupted")));
    }
}

TEST_F(ImportCommand, LeavesNothingBehindWhenItIsInterrupted)
{
    writeModel(published("visual.onnx"), endlessModel());
    const pid_t whole = fork();
    ASSERT_GE(whole, 0);
    if (whole == 0)
        _exit(run({published().toStdString(), "--out", installed().toStdString()}));
    const auto staged = [this] {
        return !QDir(m_installed.path())
                    .entryList({QStringLiteral(".models-import-*")}, QDir::Dirs | QDir::Hidden)
                    .isEmpty();
    };
    int status = 0;
    bool isOver = false;
    while (!staged() && !isOver)
        isOver = waitpid(whole, &status, WNOHANG) == whole;
    ASSERT_FALSE(isOver);
    kill(whole, SIGTERM);
    ASSERT_EQ(waitpid(whole, &status, 0), whole);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), ExitCode::failure);
    EXPECT_EQ(QDir(m_installed.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList());
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
