#include "encoders/starter/StarterText.h"

#include "encoders/graph/GraphRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Qorvane::Encoders {
namespace {

constexpr int vocabularySize = 12;
constexpr int width = 4;

QString text(const char *characters)
{
    return QString::fromLatin1(characters);
}

// Element `axis` of the vector of token `id`: all are different, and none is a multiple of another.
double element(int id, int axis)
{
    return std::sin(1.7 * id + 2.3 * axis * axis + 0.4 * id * axis);
}

/// A sentence encoder in the published form whose hidden states are its tokens' own vectors, multiplied
/// by the mask, plus their type.
QByteArray plainEncoder()
{
    onnx::ModelProto model = GraphBuilder::emptyModel(11, "plain");
    GraphBuilder builder(*model.mutable_graph());
    for (const char *name : {"input_ids", "attention_mask", "token_type_ids"})
        builder.input(name, onnx::TensorProto::INT64, {-1, -1});
    std::vector<float> table;
    for (int id = 0; id < vocabularySize; ++id) {
        for (int axis = 0; axis < width; ++axis)
            table.push_back(float(element(id, axis)));
    }
    const std::string each =
        builder.node("Gather", {builder.floats("table", {vocabularySize, width}, table), "input_ids"});
    const auto number = [&](const std::string &name) {
        const std::string real = builder.node("Cast", {name}, {{"to", int(onnx::TensorProto::FLOAT)}});
        return builder.node("Unsqueeze", {real}, {{"axes", std::vector<std::int64_t>{2}}});
    };
    const std::string masked = builder.node("Mul", {each, number("attention_mask")});
    builder.node("Add", {masked, number("token_type_ids")}, std::vector<std::string>{"last_hidden_state"});
    builder.output("last_hidden_state", onnx::TensorProto::FLOAT, {-1, -1, width});
    return QByteArray::fromStdString(model.SerializeAsString());
}

std::vector<float> runText(const onnx::ModelProto &model, std::vector<double> ids)
{
    constexpr size_t context = 77;
    std::vector<double> mask(ids.size(), 1);
    ids.resize(context, 0);
    mask.resize(context, 0);
    auto run = GraphRun::fromBytes(model.SerializeAsString());
    EXPECT_TRUE(run) << (run ? "" : run.error().text().toStdString());
    if (!run)
        return {};
    const auto type = onnx::TensorProto::INT32;
    const auto result = run->run({{text("input_ids"), Tensor::of(type, {1, context}, ids)},
                                  {text("attention_mask"), Tensor::of(type, {1, context}, mask)}},
                                 "text_features");
    EXPECT_TRUE(result) << (result ? "" : result.error().text().toStdString());
    return result ? result->values : std::vector<float>();
}

void expectMean(const std::vector<float> &vector, const std::vector<int> &ids)
{
    ASSERT_EQ(vector.size(), size_t(width));
    for (int axis = 0; axis < width; ++axis) {
        double sum = 0;
        for (const int id : ids)
            sum += element(id, axis);
        EXPECT_NEAR(double(vector[size_t(axis)]), sum / double(ids.size()), 1e-5);
    }
}

WordPiece marks()
{
    return WordPiece({{text("[UNK]"), 0},
                      {text("[CLS]"), 1},
                      {text("[SEP]"), 2},
                      {text("snow"), 3},
                      {text("board"), 4},
                      {text("##board"), 5},
                      {text("dog"), 6}});
}

StarterText english()
{
    // The application's ids: 0 "snow", 1 "board</w>", 2 "dog</w>", 3 and 4 the marks.
    const TokenTable table =
        TokenTable::make({text("snow"), text("board</w>"), text("dog</w>"), text("<|startoftext|>"),
                          text("<|endoftext|>"), text("bo"), text("ard</w>")},
                         marks());
    // And "bo" and "ard</w>", 5 and 6, which are no pieces of their own, nor is "snowbo".
    const WordTable words = WordTable::make(
        {text("board"), text("snowboard")},
        [](const QString &word) {
            return word == text("board") ? std::vector<std::int32_t>{5, 6}
                                         : std::vector<std::int32_t>{0, 5, 6};
        },
        table, marks());
    return *StarterText::english(plainEncoder(), table, words, marks());
}

TEST(StarterText, EnglishTokensBecomeThePiecesOfTheirPlaceInAWord)
{
    const onnx::ModelProto encoder = english().sentenceEncoder();
    expectMean(runText(encoder, {3, 0, 1, 2, 4}), {1, 3, 5, 6, 2});
    expectMean(runText(encoder, {3, 1, 2, 4}), {1, 4, 6, 2});
}

TEST(StarterText, WordsThatTheApplicationCutsElsewhereAreKnownByAllTheirTokens)
{
    const onnx::ModelProto encoder = english().sentenceEncoder();
    expectMean(runText(encoder, {3, 2, 5, 6, 2, 4}), {1, 6, 4, 6, 2});
    expectMean(runText(encoder, {3, 0, 5, 6, 2, 5, 6, 4}), {1, 3, 5, 6, 4, 2});
}

TEST(StarterText, AKnownWordsTokensInsideOfAnotherWordAreNotThatWord)
{
    // "snow" goes on in "bo" and "ard", but as a word of four tokens that nobody listed.
    expectMean(runText(english().sentenceEncoder(), {3, 0, 0, 5, 6, 4}), {1, 3, 0, 0, 0, 2});
}

TEST(StarterText, AnEmptyEnglishTextIsJustItsMarks)
{
    expectMean(runText(english().sentenceEncoder(), {3, 4}), {1, 2});
}

TEST(StarterText, EnglishPaddingCountsNothing)
{
    // The padding's id is that of "snow", so only the mask tells them apart.
    expectMean(runText(english().sentenceEncoder(), {3, 2, 4}), {1, 6, 2});
}

TEST(StarterText, AFullEnglishArrayIsTaken)
{
    std::vector<double> ids(77, 2);
    ids[0] = 3;
    std::vector<int> pieces(78, 6);
    pieces.front() = 1;
    pieces.back() = 2;
    expectMean(runText(english().sentenceEncoder(), ids), pieces);
}

TEST(StarterText, ChineseTakesTheFirstTokensVector)
{
    const QStringList vocabulary{text("[PAD]"), text("a"), text("[CLS]"), text("[SEP]")};
    const auto chinese = StarterText::chinese(plainEncoder(), vocabulary);
    ASSERT_TRUE(chinese);
    expectMean(runText(chinese->sentenceEncoder(), {2, 1, 3}), {2});
}

// With the mean of all tokens in place of the first one, so that the others show.
std::vector<float> chineseMean(std::vector<double> ids)
{
    const QStringList vocabulary{text("[PAD]"), text("a"), text("[CLS]"), text("[SEP]")};
    onnx::ModelProto mean;
    EXPECT_TRUE(mean.ParseFromString(plainEncoder().toStdString()));
    for (auto &node : *mean.mutable_graph()->mutable_node()) {
        if (node.output(0) == "last_hidden_state")
            node.set_output(0, "each");
    }
    GraphBuilder builder(*mean.mutable_graph());
    builder.node("ReduceMean", {"each"}, {"last_hidden_state"}, {{"axes", std::vector<std::int64_t>{1}}});
    const auto chinese =
        StarterText::chinese(QByteArray::fromStdString(mean.SerializeAsString()), vocabulary);
    EXPECT_TRUE(chinese);
    return runText(chinese->sentenceEncoder(), std::move(ids));
}

TEST(StarterText, ChinesePaddingCountsNothing)
{
    expectMean(chineseMean({2, 1, 1, 3}), {2, 1, 1, 3});
}

TEST(StarterText, ACutChineseTextGetsItsEndMarkBack)
{
    std::vector<double> ids(77, 1);
    ids[0] = 2;
    std::vector<int> tokens(77, 1);
    tokens.front() = 2;
    tokens.back() = 3;
    expectMean(chineseMean(ids), tokens);
}

TEST(StarterText, RefusesAGraphWithoutHiddenStates)
{
    onnx::ModelProto other;
    ASSERT_TRUE(other.ParseFromString(plainEncoder().toStdString()));
    other.mutable_graph()->mutable_node()->RemoveLast();
    other.mutable_graph()->clear_output();
    const auto refused =
        StarterText::chinese(QByteArray::fromStdString(other.SerializeAsString()), {text("[SEP]")});
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().expected.contains(text("last_hidden_state")));
    EXPECT_FALSE(StarterText::chinese("no graph", {text("[SEP]")}));
}

TEST(StarterText, TheTextEncoderPutsALabelsOwnTextNearestToIt)
{
    const StarterText encoder = english();
    LabelSpace::Rows labels{.width = size_t(width), .values = {}};
    const std::vector<std::vector<double>> texts{{3, 2, 4}, {3, 0, 1, 4}, {3, 1, 4}, {3, 0, 4}};
    for (const auto &ids : texts) {
        const std::vector<float> row = runText(encoder.sentenceEncoder(), ids);
        labels.values.insert(labels.values.end(), row.begin(), row.end());
    }
    const onnx::ModelProto model = encoder.textEncoder(labels);
    for (size_t label = 0; label < texts.size(); ++label) {
        const std::vector<float> vector = runText(model, texts[label]);
        ASSERT_EQ(vector.size(), texts.size() + 1);
        const auto greatest = std::max_element(vector.begin(), vector.end() - 1);
        EXPECT_EQ(size_t(greatest - vector.begin()), label);
        const double squares = std::inner_product(vector.begin(), vector.end(), vector.begin(), 0.0);
        EXPECT_NEAR(squares, 1, 1e-4);
    }
}

} // namespace
} // namespace Qorvane::Encoders
