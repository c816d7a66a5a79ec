#include "encoders/CommandLine.h"
#include "encoders/Console.h"
#include "encoders/TestEncoders.h"
#include "encoders/graph/GraphBuilder.h"
#include "platform/Languages.h"
#include "tools/encoders/ConsoleText.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

using namespace Qorvane;
using namespace Qorvane::Encoders;

namespace {

/// The tests' small encoders, installed as a user's own.
class CheckCommand : public testing::Test
{
protected:
    ~CheckCommand() override { removeInstalledEncoders(); }

    int run(const QString &folder = {})
    {
        const std::string path = folder.toStdString();
        std::vector<const char *> arguments{"qorvane-encoders", "check"};
        if (!path.empty())
            arguments.push_back(path.c_str());
        return runCommandLine(int(arguments.size()), arguments.data(), m_text.console());
    }

    bool says(const QString &pattern) const
    {
        return QRegularExpression(pattern).match(m_text.results()).hasMatch();
    }

    ConsoleText m_text;
};

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST_F(CheckCommand, saysWhatAnInstalledFamilyIsAndHowFast)
{
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    write(userModelsFolder() + QStringLiteral("/ClipLicence.txt"), "\nA Licence\nmore");
    EXPECT_EQ(run(), ExitCode::success) << qPrintable(m_text.messages());
    EXPECT_TRUE(says(QStringLiteral("English: installed\n"))) << qPrintable(m_text.results());
    EXPECT_TRUE(says(QStringLiteral("vision: .*/ClipVisionEncoder\\.onnx, [0-9.]+ ")));
    EXPECT_TRUE(says(QStringLiteral("vocabulary: .*/vocab\\.json, [0-9]+ tokens")));
    EXPECT_TRUE(says(QStringLiteral("length: 16\n")));
    EXPECT_TRUE(says(QStringLiteral("licence: .*/ClipLicence\\.txt \\(\"A Licence\"\\)")));
    EXPECT_TRUE(says(QStringLiteral("self-test: passed, \\d of \\d drawings")));
    EXPECT_TRUE(says(QStringLiteral("speed: [0-9.]+ ms a picture, [0-9.]+ ms a text")));
    EXPECT_TRUE(says(QStringLiteral("Chinese: not installed\n")));
}

TEST_F(CheckCommand, looksIntoTheFolderNamedAndNowhereElse)
{
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    const QString made = QFileInfo(testEncoderPath(QStringLiteral("chinese/chinese_vocab.json"))).path();
    EXPECT_EQ(run(made), ExitCode::success) << qPrintable(m_text.messages());
    EXPECT_TRUE(says(QStringLiteral("English: not installed\n"))) << qPrintable(m_text.results());
    EXPECT_TRUE(says(QStringLiteral("Chinese: installed\n")));
    EXPECT_TRUE(says(QStringLiteral("length: 12\n")));
    EXPECT_TRUE(says(QStringLiteral("licence: no text found")));
}

TEST_F(CheckCommand, namesWhatIsMissingOfAFamily)
{
    ASSERT_TRUE(installTestEncoder(QStringLiteral("openai/ClipVisionEncoder.onnx")));
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(says(QStringLiteral("English: INCOMPLETE, without ClipTextEncoder\\.onnx, vocab\\.json\n")))
        << qPrintable(m_text.results());
}

TEST_F(CheckCommand, anEncoderThatDoesNotLoadFailsTheSelfTest)
{
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    write(userModelsFolder() + QStringLiteral("/ClipVisionEncoder.onnx"), "no graph");
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(says(QStringLiteral("self-test: FAILED: expected .*; found .*; ")))
        << qPrintable(m_text.results());
    EXPECT_FALSE(says(QStringLiteral("speed:")));
}

TEST_F(CheckCommand, outlivesAnEncoderThatEndsItsProcess)
{
    if (QSysInfo::currentCpuArchitecture() != QStringLiteral("x86_64"))
        GTEST_SKIP() << "only this processor ends processes for their arithmetic";
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    ASSERT_TRUE(installTestFamily(QStringLiteral("chinese")));
    // The quotient is one more than the type holds, for which the processor ends the process.
    onnx::ModelProto model = GraphBuilder::emptyModel(13, "deadly");
    GraphBuilder builder(*model.mutable_graph());
    builder.input("pixel_values", onnx::TensorProto::FLOAT, {1, 3, 224, 224});
    const auto whole = builder.node("Cast", {"pixel_values"}, {{"to", onnx::TensorProto::INT32}});
    const auto none = builder.node("Sub", {whole, whole});
    const auto number = [&](int value) {
        return builder.node("Add", {none, builder.int32s("number", {1}, std::vector<std::int32_t>{value})});
    };
    const auto divided = builder.node("Mod", {number(std::numeric_limits<int>::min()), number(-1)});
    builder.node("ReduceMean", {builder.node("Cast", {divided}, {{"to", onnx::TensorProto::FLOAT}})},
                 std::vector<std::string>{"image_features"},
                 {{"axes", std::vector<std::int64_t>{2, 3}}, {"keepdims", 0}});
    builder.output("image_features", onnx::TensorProto::FLOAT, {1, 3});
    write(userModelsFolder() + QStringLiteral("/ClipVisionEncoder.onnx"),
          QByteArray::fromStdString(model.SerializeAsString()));

    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(says(QStringLiteral("English: installed\n"))) << qPrintable(m_text.results());
    EXPECT_TRUE(says(QStringLiteral("self-test: FAILED: .*ended the process that tried it")))
        << qPrintable(m_text.results());
    EXPECT_TRUE(says(QStringLiteral("Chinese: installed\n")));
    EXPECT_TRUE(says(QStringLiteral("self-test: passed")));
}

TEST_F(CheckCommand, saysWhichVocabularyAChineseUserLacks)
{
    const auto restore = qScopeGuard([] { Languages::endOverrideForTests(); });
    Languages::overrideForTests({QStringLiteral("zh-Hans-CN")}, QStringLiteral("zh"));
    const QString lacking = QStringLiteral("it will know 16 tokens only");
    ASSERT_TRUE(installTestFamily(QStringLiteral("openai")));
    EXPECT_EQ(run(), ExitCode::success);
    EXPECT_TRUE(m_text.messages().contains(lacking)) << qPrintable(m_text.messages());
    ASSERT_TRUE(installTestFamily(QStringLiteral("chinese")));
    ConsoleText second;
    const std::array<const char *, 2> arguments{"qorvane-encoders", "check"};
    EXPECT_EQ(runCommandLine(2, arguments.data(), second.console()), ExitCode::success);
    EXPECT_FALSE(second.messages().contains(lacking));
}

TEST_F(CheckCommand, followsLinksToTheLicenceBesideTheirTargets)
{
    const QTemporaryDir starter;
    for (const char *name : {"ClipVisionEncoder.onnx", "ClipTextEncoder.onnx", "vocab.json"}) {
        const QString file = QString::fromLatin1(name);
        ASSERT_TRUE(QFile::copy(testEncoderPath(QStringLiteral("openai/") + file), starter.filePath(file)));
        ASSERT_TRUE(QFile::link(starter.filePath(file), userModelsFolder() + u'/' + file));
    }
    write(starter.filePath(QStringLiteral("LICENCES")), "Several licences");
    EXPECT_EQ(run(), ExitCode::success) << qPrintable(m_text.messages());
    EXPECT_TRUE(says(QStringLiteral("a link to "))) << qPrintable(m_text.results());
    EXPECT_TRUE(says(QStringLiteral("LICENCES \\(\"Several licences\"\\)")));
}

TEST_F(CheckCommand, withoutAnythingItSaysHowToInstallSomething)
{
    EXPECT_EQ(run(), ExitCode::failure);
    EXPECT_TRUE(m_text.messages().contains(QStringLiteral("qorvane-encoders import")))
        << qPrintable(m_text.messages());
}
