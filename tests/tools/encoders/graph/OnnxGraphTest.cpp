#include "encoders/graph/OnnxGraph.h"

#include "encoders/graph/GraphBuilder.h"
#include "encoders/graph/GraphNames.h"
#include "encoders/graph/GraphRun.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace Qorvane::Encoders;

namespace {

const std::vector<float> weights{1, 2, 3, 4, 5, 6};

class OnnxGraphTest : public testing::Test
{
protected:
    QString at(const QString &name) const { return m_folder.filePath(name); }

    static onnx::ModelProto model()
    {
        onnx::ModelProto model = GraphBuilder::emptyModel(13, "small");
        GraphBuilder builder(*model.mutable_graph());
        builder.input("x", onnx::TensorProto::FLOAT, {1, 2});
        builder.floats("weights", {2, 3}, weights);
        builder.node("MatMul", {"x", "weights"}, std::vector<std::string>{"y"});
        builder.output("y", onnx::TensorProto::FLOAT, {1, 3});
        return model;
    }

    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    static QByteArray bytesOf(const onnx::ModelProto &model)
    {
        return QByteArray::fromStdString(model.SerializeAsString());
    }

    /// The same model with its weights at `offset` of the file `location`.
    static onnx::ModelProto externalModel(const std::string &location, const std::string &offset = "0",
                                          const std::string &length = "24")
    {
        onnx::ModelProto external = model();
        auto &tensor = *external.mutable_graph()->mutable_initializer(0);
        tensor.clear_raw_data();
        tensor.set_data_location(onnx::TensorProto::EXTERNAL);
        for (const auto &[key, value] : {std::pair<const char *, std::string>{"location", location},
                                         {"offset", offset},
                                         {"length", length}}) {
            if (value.empty())
                continue;
            auto *entry = tensor.add_external_data();
            entry->set_key(key);
            entry->set_value(value);
        }
        return external;
    }

    void writeWeights(const QString &name, int blanksBefore = 0) const
    {
        QByteArray bytes(blanksBefore, '\0');
        bytes.append(reinterpret_cast<const char *>(weights.data()),
                     qsizetype(weights.size() * sizeof(float)));
        write(name, bytes);
    }

    std::string refusal(const QString &name) const
    {
        const auto graph = OnnxGraph::load(at(name));
        return graph ? std::string() : graph.error().text().toStdString();
    }

    std::vector<float> result(const QString &path) const
    {
        auto run = GraphRun::open(path);
        if (!run)
            return {};
        return run->run({{QStringLiteral("x"), Tensor::of(onnx::TensorProto::FLOAT, {1, 2}, {1, 10})}}, "y")
            .value_or(RunResult())
            .values;
    }

    QTemporaryDir m_folder;
};

TEST_F(OnnxGraphTest, WritesWhatItRead)
{
    write("a.onnx", bytesOf(model()));
    auto graph = OnnxGraph::load(at("a.onnx"));
    ASSERT_TRUE(graph) << graph.error().text().toStdString();
    EXPECT_EQ(graph->opset(), 13);
    const auto written = graph->save(at("b.onnx"));
    ASSERT_TRUE(written);
    EXPECT_EQ(*written, QStringList{at("b.onnx")});
    EXPECT_EQ(result(at("b.onnx")), (std::vector<float>{41, 52, 63}));
}

TEST_F(OnnxGraphTest, PutsWeightsFromBesideInsideWhenTheyFit)
{
    writeWeights("weights.bin", 100);
    write("a.onnx", bytesOf(externalModel("weights.bin", "100")));
    auto graph = OnnxGraph::load(at("a.onnx"));
    ASSERT_TRUE(graph) << graph.error().text().toStdString();
    ASSERT_TRUE(graph->save(at("b.onnx")));
    ASSERT_TRUE(QFile::remove(at("weights.bin")));
    EXPECT_EQ(result(at("b.onnx")), (std::vector<float>{41, 52, 63}));
}

TEST_F(OnnxGraphTest, PutsWeightsBesideUnderItsOwnNameWhenTheyDoNotFit)
{
    writeWeights("weights.bin", 100);
    write("a.onnx", bytesOf(externalModel("./weights.bin", "100", "")));
    auto graph = OnnxGraph::load(at("a.onnx"));
    ASSERT_TRUE(graph) << graph.error().text().toStdString();
    const auto written = graph->save(at("b.onnx"), 20);
    ASSERT_TRUE(written);
    EXPECT_EQ(*written, (QStringList{at("b.onnx"), at("b.onnx.data")}));
    ASSERT_TRUE(QFile::remove(at("weights.bin")));
    EXPECT_EQ(result(at("b.onnx")), (std::vector<float>{41, 52, 63}));
}

TEST_F(OnnxGraphTest, RefusesWeightsOutsideOfItsFolder)
{
    QTemporaryDir elsewhere;
    const QString outside = elsewhere.filePath("weights.bin");
    writeWeights("weights.bin");
    ASSERT_TRUE(QFile::rename(at("weights.bin"), outside));
    ASSERT_TRUE(QFile::link(outside, at("link.bin")));
    ASSERT_TRUE(QFile::link(elsewhere.path(), at("folder")));
    const std::string up = "../" + QFileInfo(elsewhere.path()).fileName().toStdString() + "/weights.bin";

    for (const std::string &location : {outside.toStdString(), up, "folder/../" + up, std::string("link.bin"),
                                        std::string("folder/weights.bin")}) {
        write("a.onnx", bytesOf(externalModel(location)));
        EXPECT_NE(refusal("a.onnx").find("leaves the model's folder"), std::string::npos) << location;
    }
}

TEST_F(OnnxGraphTest, RefusesThreeGigabytesOutsideOfItsFolderWithoutReadingThem)
{
    QTemporaryDir elsewhere;
    QFile large(elsewhere.filePath("large.bin"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    ASSERT_TRUE(large.resize(qint64(3) << 30));
    onnx::ModelProto external =
        externalModel(large.fileName().toStdString(), "0", std::to_string(qint64(3) << 30));
    auto &tensor = *external.mutable_graph()->mutable_initializer(0);
    tensor.set_dims(0, qint64(1) << 28);
    write("a.onnx", bytesOf(external));
    EXPECT_NE(refusal("a.onnx").find("leaves the model's folder"), std::string::npos);
}

TEST_F(OnnxGraphTest, RefusesPlacesThatTheFileDoesNotHave)
{
    writeWeights("weights.bin");
    const auto refusalOf = [this](const onnx::ModelProto &external) {
        write("a.onnx", bytesOf(external));
        return refusal("a.onnx");
    };
    EXPECT_NE(refusalOf(externalModel("weights.bin", "4")).find("has 24 bytes where at least 28"),
              std::string::npos);
    EXPECT_NE(refusalOf(externalModel("weights.bin", "25", "")).find("has 24 bytes"), std::string::npos);
    EXPECT_NE(refusalOf(externalModel("weights.bin", "-4")).find("no number"), std::string::npos);
    EXPECT_NE(refusalOf(externalModel("weights.bin", "0", "9223372036854775807")).find("has 24 bytes"),
              std::string::npos);
    EXPECT_NE(refusalOf(externalModel("weights.bin", "9223372036854775807", "1")).find("has 24 bytes"),
              std::string::npos);
    EXPECT_NE(refusalOf(externalModel("weights.bin", "0", "20")).find("shape"), std::string::npos);
    EXPECT_NE(refusalOf(externalModel("absent.bin")).find("missing"), std::string::npos);
    EXPECT_NE(refusalOf(externalModel("")).find("no file name"), std::string::npos);
    EXPECT_NE(refusalOf(externalModel(".")).find("leaves the model's folder"), std::string::npos);
}

TEST_F(OnnxGraphTest, SaysWhatIsNoModel)
{
    write("text.onnx", "version https://git-lfs.github.com/spec/v1\noid sha256:0123\nsize 352000000\n");
    write("empty.onnx", {});
    const QByteArray whole = bytesOf(model());
    write("cut.onnx", whole.left(whole.size() - 10));
    EXPECT_NE(refusal("text.onnx").find("a file of another kind"), std::string::npos);
    EXPECT_NE(refusal("empty.onnx").find("an empty file"), std::string::npos);
    EXPECT_NE(refusal("cut.onnx").find("cut off or damaged"), std::string::npos);
    EXPECT_NE(refusal("absent.onnx").find("no such file"), std::string::npos);
}

TEST_F(OnnxGraphTest, RefusesMoreElementsThanTheLimitBeforeMakingThem)
{
    onnx::ModelProto large = model();
    // A node of no content takes two bytes.
    for (int index = 0; index < 5000; ++index)
        large.mutable_graph()->add_node();
    write("a.onnx", bytesOf(large));
    ModelLimits limits;
    limits.elements = 4000;
    const auto graph = OnnxGraph::load(at("a.onnx"), limits);
    ASSERT_FALSE(graph);
    EXPECT_NE(graph.error().text().toStdString().find("more nodes"), std::string::npos);

    limits = {};
    limits.fileSize = 100;
    ASSERT_FALSE(OnnxGraph::load(at("a.onnx"), limits));
}

TEST_F(OnnxGraphTest, CountsTypesAndSizesToo)
{
    // Each of these takes two bytes in the file and many times as much in memory.
    constexpr int count = 5000;
    ModelLimits limits;
    limits.elements = count - 1000;
    const auto refusalOf = [&](const onnx::ModelProto &large) {
        write("a.onnx", bytesOf(large));
        const auto graph = OnnxGraph::load(at("a.onnx"), limits);
        return graph ? std::string() : graph.error().text().toStdString();
    };
    EXPECT_EQ(refusalOf(model()), "");
    const auto addSizes = [](onnx::TypeProto &type) {
        for (int index = 0; index < count; ++index)
            type.mutable_tensor_type()->mutable_shape()->add_dim();
    };
    onnx::ModelProto input = model();
    addSizes(*input.mutable_graph()->mutable_input(0)->mutable_type());
    EXPECT_NE(refusalOf(input).find("more nodes and numbers"), std::string::npos);

    onnx::ModelProto output = model();
    addSizes(*output.mutable_graph()
                  ->mutable_output(0)
                  ->mutable_type()
                  ->mutable_sequence_type()
                  ->mutable_elem_type());
    EXPECT_NE(refusalOf(output).find("more nodes and numbers"), std::string::npos);

    onnx::ModelProto between = model();
    addSizes(*between.mutable_graph()->add_value_info()->mutable_type());
    EXPECT_NE(refusalOf(between).find("more nodes and numbers"), std::string::npos);

    onnx::ModelProto attribute = model();
    addSizes(*attribute.mutable_graph()->mutable_node(0)->add_attribute()->mutable_tp());
    EXPECT_NE(refusalOf(attribute).find("more nodes and numbers"), std::string::npos);
}

TEST_F(OnnxGraphTest, RefusesModelsInTraining)
{
    onnx::ModelProto training = model();
    training.add_training_info()->mutable_algorithm()->add_node();
    write("a.onnx", bytesOf(training));
    EXPECT_NE(refusal("a.onnx").find("being trained"), std::string::npos);
}

TEST_F(OnnxGraphTest, SaysWhatToDoAboutWeightsPackedAsIntegers)
{
    onnx::ModelProto packed = model();
    auto &tensor = *packed.mutable_graph()->mutable_initializer(0);
    tensor.clear_raw_data();
    tensor.set_data_type(onnx::TensorProto::FLOAT16);
    for (int index = 0; index < 1000; ++index)
        tensor.add_int32_data(index);
    write("a.onnx", bytesOf(packed));
    EXPECT_EQ(refusal("a.onnx"), "");
    ModelLimits limits;
    limits.packedIntegers = 900;
    const auto graph = OnnxGraph::load(at("a.onnx"), limits);
    ASSERT_FALSE(graph);
    EXPECT_TRUE(graph.error().found.contains(QStringLiteral("an unusual form")));
    EXPECT_TRUE(graph.error().remedy.contains(QStringLiteral("raw data")));
}

TEST_F(OnnxGraphTest, AsksForRoomBeforeItCopiesWeights)
{
    // A file of this length without a byte on the disk.
    const qint64 size = (QStorageInfo(m_folder.path()).bytesTotal() / 4 + (qint64(1) << 30)) * 4;
    QFile large(at("large.bin"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    ASSERT_TRUE(large.resize(size));
    onnx::ModelProto external = externalModel("large.bin", "0", std::to_string(size));
    auto &tensor = *external.mutable_graph()->mutable_initializer(0);
    tensor.clear_dims();
    tensor.add_dims(size / 4);
    write("a.onnx", bytesOf(external));
    EXPECT_NE(refusal("a.onnx").find("weights of at most 8"), std::string::npos) << refusal("a.onnx");

    ModelLimits limits;
    limits.externalData = size;
    auto graph = OnnxGraph::load(at("a.onnx"), limits);
    ASSERT_TRUE(graph) << graph.error().text().toStdString();
    const auto saved = graph->save(at("b.onnx"));
    ASSERT_FALSE(saved);
    EXPECT_TRUE(saved.error().found.contains(QStringLiteral("on the disk where")))
        << saved.error().text().toStdString();
    EXPECT_FALSE(QFile::exists(at("b.onnx.data")));
}

TEST_F(OnnxGraphTest, SurvivesDamageOfAnyKind)
{
    writeWeights("weights.bin");
    const std::string whole = externalModel("weights.bin").SerializeAsString() + model().SerializeAsString();
    std::mt19937 random(1);
    int readable = 0;
    for (int round = 0; round < 1500; ++round) {
        std::string damaged = whole;
        if (round % 3 == 0)
            damaged.resize(random() % whole.size());
        for (unsigned flips = random() % 4; flips > 0 && !damaged.empty(); --flips)
            damaged[random() % damaged.size()] ^= static_cast<char>(1u << (random() % 8));
        write("a.onnx", QByteArray::fromStdString(damaged));
        auto graph = OnnxGraph::load(at("a.onnx"));
        if (!graph)
            continue;
        ++readable;
        namesIn(graph->graph());
        // Writing waits for the disk.
        if (readable % 10 == 0)
            static_cast<void>(graph->save(at("b.onnx")));
    }
    // Most flips fall into weights and names, which any content suits.
    EXPECT_GT(readable, 100);
}

} // namespace
