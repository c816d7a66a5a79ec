#include "encoders/graph/TowerCut.h"

#include "encoders/graph/GraphBuilder.h"
#include "encoders/graph/GraphNames.h"
#include "encoders/graph/GraphRun.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qorvane::Encoders;

namespace {

/// Two towers that share a constant, and a node that needs both.
onnx::ModelProto twoTowers()
{
    onnx::ModelProto model = GraphBuilder::emptyModel(13, "two");
    GraphBuilder builder(*model.mutable_graph());
    builder.input("a", onnx::TensorProto::FLOAT, {1, 2});
    builder.input("b", onnx::TensorProto::FLOAT, {1, 2});
    const std::string shared = builder.floats("shared", {1, 2}, std::vector<float>{2, 3});
    const std::string own = builder.floats("own", {1, 2}, std::vector<float>{10, 20});
    builder.node("Mul", {"a", shared}, std::vector<std::string>{"left"});
    builder.node("Mul", {"b", shared}, std::vector<std::string>{"scaled"});
    builder.node("Add", {"scaled", own}, std::vector<std::string>{"right"});
    builder.node("Sub", {"left", "right"}, std::vector<std::string>{"both"});
    for (const char *name : {"left", "right", "both"})
        builder.output(name, onnx::TensorProto::FLOAT, {1, 2});
    return model;
}

TEST(TowerCut, KeepsOnlyWhatTheOutputNeeds)
{
    onnx::ModelProto model = twoTowers();
    ASSERT_TRUE(cutTower(*model.mutable_graph(), "left"));

    EXPECT_EQ(model.graph().node_size(), 1);
    ASSERT_EQ(model.graph().initializer_size(), 1);
    EXPECT_EQ(model.graph().initializer(0).name(), "shared");
    ASSERT_EQ(model.graph().input_size(), 1);
    EXPECT_EQ(model.graph().input(0).name(), "a");
    ASSERT_EQ(model.graph().output_size(), 1);
    EXPECT_EQ(model.graph().output(0).name(), "left");
}

TEST(TowerCut, BothTowersOfACutGraphGiveWhatTheWholeGave)
{
    const auto type = onnx::TensorProto::FLOAT;
    onnx::ModelProto right = twoTowers();
    ASSERT_TRUE(cutTower(*right.mutable_graph(), "right"));

    auto run = GraphRun::fromBytes(right.SerializeAsString());
    ASSERT_TRUE(run) << run.error().text().toStdString();
    const auto result = run->run({{QStringLiteral("b"), Tensor::of(type, {1, 2}, {1, 2})}}, "right");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->values, (std::vector<float>{12, 26}));
}

TEST(TowerCut, FindsWhatItNeedsInAnyOrderOfTheNodesAndKeepsThatOrder)
{
    // A cast at the end that belongs in between, as converters to 16 bits leave it.
    onnx::ModelProto model = twoTowers();
    auto &nodes = *model.mutable_graph()->mutable_node();
    std::reverse(nodes.begin(), nodes.end());
    nodes.SwapElements(0, 1);
    ASSERT_EQ(nodes[0].output(0), "right");
    onnx::ModelProto whole = model;
    ASSERT_TRUE(cutTower(*whole.mutable_graph(), "both"));
    EXPECT_EQ(whole.graph().node_size(), 4);

    ASSERT_TRUE(cutTower(*model.mutable_graph(), "right"));
    ASSERT_EQ(nodes.size(), 2);
    EXPECT_EQ(nodes[0].output(0), "right");
    EXPECT_EQ(nodes[1].output(0), "scaled");
    auto run = GraphRun::fromBytes(model.SerializeAsString());
    ASSERT_TRUE(run) << run.error().text().toStdString();
    const auto result =
        run->run({{QStringLiteral("b"), Tensor::of(onnx::TensorProto::FLOAT, {1, 2}, {1, 2})}}, "right");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->values, (std::vector<float>{12, 26}));
}

TEST(TowerCut, EndsOnNodesThatLeadRoundInACircle)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(13, "circle");
    GraphBuilder builder(*model.mutable_graph());
    builder.node("Neg", {"b"}, std::vector<std::string>{"a"});
    builder.node("Neg", {"a"}, std::vector<std::string>{"b"});
    ASSERT_TRUE(cutTower(*model.mutable_graph(), "a"));
    EXPECT_EQ(model.graph().node_size(), 2);
}

TEST(TowerCut, KeepsWhatAnInnerGraphTakesFromOutside)
{
    onnx::ModelProto model = GraphBuilder::emptyModel(13, "outer");
    GraphBuilder builder(*model.mutable_graph());
    builder.input("x", onnx::TensorProto::FLOAT, {1});
    builder.input("other", onnx::TensorProto::FLOAT, {1});
    builder.floats("taken", {1}, std::vector<float>{5});
    builder.node("Neg", {"other"}, std::vector<std::string>{"unused"});
    const auto condition = builder.bytes("yes", {}, std::vector<std::uint8_t>{1});
    model.mutable_graph()->mutable_initializer(1)->set_data_type(onnx::TensorProto::BOOL);
    onnx::NodeProto &choice = builder.node("If", {condition}, std::vector<std::string>{"y"});
    for (const char *branch : {"then_branch", "else_branch"}) {
        auto &attribute = *choice.add_attribute();
        attribute.set_name(branch);
        attribute.set_type(onnx::AttributeProto::GRAPH);
        GraphBuilder inner(*attribute.mutable_g());
        attribute.mutable_g()->set_name(branch);
        inner.node("Add", {"x", "taken"}, std::vector<std::string>{std::string(branch) + "_sum"});
        inner.output(std::string(branch) + "_sum", onnx::TensorProto::FLOAT, {1});
    }
    builder.output("y", onnx::TensorProto::FLOAT, {1});

    ASSERT_TRUE(cutTower(*model.mutable_graph(), "y"));
    EXPECT_EQ(model.graph().node_size(), 1);
    EXPECT_EQ(model.graph().input_size(), 1);
    auto run = GraphRun::fromBytes(model.SerializeAsString());
    ASSERT_TRUE(run) << run.error().text().toStdString();
    const auto result =
        run->run({{QStringLiteral("x"), Tensor::of(onnx::TensorProto::FLOAT, {1}, {2})}}, "y");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->values, std::vector<float>{7});
}

TEST(TowerCut, LeavesTheGraphAloneWhenNothingGivesTheOutput)
{
    onnx::ModelProto model = twoTowers();
    EXPECT_FALSE(cutTower(*model.mutable_graph(), "nowhere"));
    EXPECT_EQ(model.graph().node_size(), 4);
}

TEST(GraphNames, RenamesInsideOfInnerGraphsToo)
{
    onnx::ModelProto model = twoTowers();
    renameValues(*model.mutable_graph(), {{"a", "first"}, {"left", "result"}});
    EXPECT_EQ(model.graph().input(0).name(), "first");
    EXPECT_EQ(model.graph().node(0).input(0), "first");
    EXPECT_EQ(model.graph().node(0).output(0), "result");
    EXPECT_EQ(model.graph().node(3).input(0), "result");
    EXPECT_EQ(model.graph().output(0).name(), "result");
}

} // namespace
