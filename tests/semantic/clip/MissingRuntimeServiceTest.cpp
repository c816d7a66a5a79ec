#include "clip/ClipTest.h"
#include "semantic/OnnxRuntime.h"

using namespace Qorvane;

// A program of its own, since a runtime that was opened once stays.
TEST_F(ClipTest, saysThatTheRuntimeIsMissingAndLoadsOnceItIsThere)
{
    OnnxRuntime::useLibraries({QStringLiteral("/no/such/libonnxruntime.so.1")});
    ChineseClipService service;
    await(service.ensureModelsLoaded());
    EXPECT_FALSE(service.modelsLoaded());
    const QString reason = QStringLiteral("the inference runtime (libonnxruntime.so.1) can't be used: ");
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌(bg) 视觉模型加载失败: ") + reason).size(), 1);
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("❌(bg) 文本模型加载失败: ") + reason).size(), 1);
    EXPECT_EQ(log.lines().constLast(), QStringLiteral("❌ 模型加载失败（至少有一个未加载）"));
    EXPECT_TRUE(await(service.searchWithDatabase(QStringLiteral("red"), {}, 20)).isEmpty());

    OnnxRuntime::useLibraries(OnnxRuntime::libraryCandidates());
    await(service.ensureModelsLoaded());
    EXPECT_TRUE(service.modelsLoaded());
}
