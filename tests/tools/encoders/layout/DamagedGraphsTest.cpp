#include "encoders/graph/Adapters.h"
#include "encoders/graph/TowerCut.h"
#include "encoders/layout/LayoutRecognition.h"
#include "encoders/layout/TowerSearch.h"
#include "tools/encoders/import/SyntheticModels.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace Qorvane::Encoders;
using namespace Qorvane::Encoders::Synthetic;

namespace {

/// Everything that an import does with a graph but running it; 1 when it came to the end.
int worked(const QString &path)
{
    auto graph = OnnxGraph::load(path);
    if (!graph || kindOf(graph->graph()) != GraphKind::joint)
        return 0;
    const auto outputs = declaredOutputs(graph->graph());
    const auto picture = visionOutput(outputs, graph->fileName());
    const auto sentence = textOutput(outputs, graph->fileName());
    if (!picture || !sentence)
        return 0;
    OnnxGraph text = graph->copy();
    if (!cutTower(graph->graph(), picture->name) || !cutTower(text.graph(), sentence->name))
        return 0;
    const auto visionForm = recogniseVision(graph->graph(), *picture, 224, 224, graph->fileName());
    const auto textForm = recogniseText(text.graph(), *sentence, 77, text.fileName());
    if (!visionForm || !textForm)
        return 0;
    adaptVision(graph->model(), *visionForm);
    adaptText(text.model(), *textForm);
    return !graph->model().SerializeAsString().empty() && !text.model().SerializeAsString().empty();
}

TEST(DamagedGraphs, AreReadRecognisedCutAndAdaptedWithoutHarm)
{
    VisionSpec vision;
    vision.side = 32;
    TextSpec text;
    text.vocabularySize = 8;
    text.mask = "attention_mask";
    const std::string whole = jointModel(vision, text).SerializeAsString();
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("model.onnx"));
    writeModel(path, jointModel(vision, text));
    ASSERT_EQ(worked(path), 1);

    std::mt19937 random(11);
    int works = 0;
    constexpr int rounds = 2000;
    for (int round = 0; round < rounds; ++round) {
        std::string damaged = whole;
        if (round % 5 == 0)
            damaged.resize(random() % whole.size());
        for (int flips = 0; flips < 2 && !damaged.empty(); ++flips) {
            // The nodes stand in front, inputs and outputs behind.
            const size_t end = std::min<size_t>(damaged.size(), 3000);
            const size_t at = random() % end;
            damaged[random() % 2 == 0 ? at : damaged.size() - 1 - at] ^=
                static_cast<char>(1u << (random() % 8));
        }
        writeFile(path, QByteArray::fromStdString(damaged));
        works += worked(path);
    }
    EXPECT_GT(works, rounds / 20);
    EXPECT_LT(works, rounds);
}

} // namespace
