#include "tools/encoders/import/ImportFixture.h"

#include <QDir>
#include <QFileInfo>

using namespace Qorvane;
using namespace Qorvane::Encoders;
using namespace Qorvane::Encoders::Synthetic;

namespace {

/// What can't be imported: it is said why, and nothing is installed.
class ImportRefusals : public ImportFixture
{
protected:
    void SetUp() override
    {
        writeModel(published("visual.onnx"), visionModel({}));
        writeModel(published("textual.onnx"), textModel({}));
        writeFile(published("vocab.json"), openaiVocabulary());
    }

    /// The problem's text; empty when the import went well or left something behind.
    std::string refusal()
    {
        const auto report = importFolder();
        if (report)
            return {};
        const QStringList left =
            QDir(m_installed.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        if (!left.isEmpty())
            return "left behind: " + left.constFirst().toStdString();
        return report.error().text().toStdString();
    }

    void expectRefusal(const std::string &part)
    {
        const std::string said = refusal();
        EXPECT_NE(said.find(part), std::string::npos) << said;
    }

    void replaceOutput(const QString &name, onnx::ModelProto model, const Shape &shape, const char *operation)
    {
        GraphBuilder builder(*model.mutable_graph());
        const std::string old = model.graph().output(0).name();
        model.mutable_graph()->clear_output();
        const auto axes = builder.int64s("refused_axes", {1}, std::vector<std::int64_t>{1});
        builder.node(operation, {old, axes}, std::vector<std::string>{"last_hidden_state"});
        builder.output("last_hidden_state", onnx::TensorProto::FLOAT, shape);
        writeModel(published(name), model);
    }

    QByteArray bytesOf(const QString &name) const
    {
        QFile file(published(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(ImportRefusals, NothingWrong)
{
    EXPECT_EQ(refusal(), "");
    EXPECT_TRUE(QFileInfo::exists(installed("ClipVisionEncoder.onnx")));
}

TEST_F(ImportRefusals, OutputOfAnotherRank)
{
    replaceOutput("visual.onnx", visionModel({}), {-1, 1, 24}, "Unsqueeze");
    expectRefusal("last_hidden_state (float, ? x 1 x 24)");
}

TEST_F(ImportRefusals, StatesBeforeTheProjection)
{
    for (const char *name : {"pooler_output", "pooled_hidden"}) {
        VisionSpec vision;
        vision.output = name;
        writeModel(published("visual.onnx"), visionModel(vision));
        expectRefusal("use an export with its projection");
    }
}

TEST_F(ImportRefusals, PictureOfAnotherRank)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(17, "flat");
    GraphBuilder builder(*model.mutable_graph());
    builder.input("pixel_values", onnx::TensorProto::FLOAT, {1, 3, 50176});
    builder.node("ReduceMean", {"pixel_values"}, std::vector<std::string>{"image_embeds"},
                 {{"axes", std::vector<std::int64_t>{2}}, {"keepdims", 0}});
    builder.output("image_embeds", onnx::TensorProto::FLOAT, {1, 3});
    writeModel(published("visual.onnx"), model);
    expectRefusal("only one for texts: textual.onnx");
}

TEST_F(ImportRefusals, TowersOfDifferentLength)
{
    TextSpec text;
    text.dimension = 32;
    writeModel(published("textual.onnx"), textModel(text));
    expectRefusal("24 numbers for a picture and 32 for a text");
}

TEST_F(ImportRefusals, MissingFile)
{
    ASSERT_TRUE(QFile::remove(published("textual.onnx")));
    expectRefusal("only one for pictures: visual.onnx");
    ASSERT_TRUE(QFile::remove(published("visual.onnx")));
    expectRefusal("no file named .onnx");
}

TEST_F(ImportRefusals, MissingPath)
{
    const auto report = importPaths({published("absent.onnx")});
    ASSERT_FALSE(report);
    EXPECT_TRUE(report.error().text().contains(QStringLiteral("absent.onnx")));
}

TEST_F(ImportRefusals, TruncatedFile)
{
    const QByteArray whole = bytesOf("visual.onnx");
    writeFile(published("visual.onnx"), whole.left(whole.size() / 2));
    expectRefusal("visual.onnx; found a file that is cut off or damaged");
}

TEST_F(ImportRefusals, NotOnnx)
{
    writeFile(published("visual.onnx"), QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    expectRefusal("a file of another kind");
}

TEST_F(ImportRefusals, TextNamedAsModel)
{
    writeFile(published("textual.onnx"),
              "version https://git-lfs.github.com/spec/v1\noid sha256:abc\nsize 254000000\n");
    expectRefusal("textual.onnx; found a file of another kind");
}

TEST_F(ImportRefusals, WeightsOutsideOfTheFolder)
{
    const QString model = published("model");
    for (const char *name : {"visual.onnx", "textual.onnx", "vocab.json"})
        ASSERT_TRUE(QFile::remove(published(QLatin1StringView(name))));
    writeModelWithWeightsBeside(model + QStringLiteral("/visual.onnx"), visionModel({}),
                                QStringLiteral("../outside.bin"));
    writeModel(model + QStringLiteral("/textual.onnx"), textModel({}));
    ASSERT_TRUE(QFileInfo::exists(published("outside.bin")));
    expectRefusal("leaves the model's folder");
}

TEST_F(ImportRefusals, MissingWeights)
{
    writeModelWithWeightsBeside(published("visual.onnx"), visionModel({}), QStringLiteral("w.bin"));
    ASSERT_TRUE(QFile::remove(published("w.bin")));
    expectRefusal("\"w.bin\" is missing");
}

TEST_F(ImportRefusals, OtherFixedBatch)
{
    VisionSpec vision;
    vision.batch = 8;
    writeModel(published("visual.onnx"), visionModel(vision));
    expectRefusal("a batch fixed at 8");
}

TEST_F(ImportRefusals, OperatorsThatTheRuntimeDoesNotKnow)
{
    onnx::ModelProto model = visionModel({});
    model.mutable_opset_import(0)->set_version(99);
    writeModel(published("visual.onnx"), model);
    expectRefusal("ClipVisionEncoder.onnx");
}

TEST_F(ImportRefusals, VectorsThatAreNoNumbers)
{
    onnx::ModelProto model = visionModel({});
    GraphBuilder builder(*model.mutable_graph());
    model.mutable_graph()->clear_output();
    const auto zero = builder.floats("zero", {1}, std::vector<float>{0});
    builder.node("Div", {"image_embeds", zero}, std::vector<std::string>{"image_features"});
    builder.output("image_features", onnx::TensorProto::FLOAT, {-1, 24});
    writeModel(published("visual.onnx"), model);
    expectRefusal("finite numbers");
}

TEST_F(ImportRefusals, VocabularyOfAnotherModel)
{
    TextSpec text;
    text.vocabularySize = 400;
    writeModel(published("textual.onnx"), textModel(text));
    // The end token that the application sends is none of these.
    expectRefusal("a vector from ClipTextEncoder.onnx for token 49407");
    expectRefusal("name the vocabulary that belongs to the model");
}

TEST_F(ImportRefusals, VocabularyThatIsNone)
{
    writeFile(published("vocab.json"), "[1, 2, 3]");
    expectRefusal("vocab.json");
    writeFile(published("vocab.json"), R"({"a": 99999999999})");
    expectRefusal("the id");
    ASSERT_TRUE(QFile::remove(published("vocab.json")));
    writeFile(published("tokenizer.json"), R"({"model": {"type": "Unigram", "vocab": [["a", -1.0]]}})");
    expectRefusal("Unigram");
}

TEST_F(ImportRefusals, DescriptionThatCannotBeRead)
{
    writeFile(published("preprocessor_config.json"), "{");
    expectRefusal("preprocessor_config.json");
}

TEST_F(ImportRefusals, TwoModelsInOneFolder)
{
    writeModel(published("other/visual.onnx"), visionModel({}));
    expectRefusal("found two");
}

TEST_F(ImportRefusals, WhatIsImportedAlready)
{
    expectImport();
    const auto report = importPaths({installed()});
    ASSERT_FALSE(report);
    EXPECT_TRUE(report.error().text().contains(QStringLiteral("imported already")));
}

TEST_F(ImportRefusals, LeaveTheOldSetInPlace)
{
    expectImport();
    const QByteArray before = bytesOf("visual.onnx");
    writeFile(published("visual.onnx"), before.left(100));
    ASSERT_FALSE(importFolder());
    expectSameTexts(Family::openai, published("textual.onnx"), {}, exactly);
    EXPECT_TRUE(VisionEncoder::load(installed("ClipVisionEncoder.onnx"), nullptr));
}

} // namespace
