#include "encoders/TestEncoders.h"
#include "semantic/Encoder.h"
#include "semantic/OnnxRuntime.h"

#include <gtest/gtest.h>

using namespace Qorvane;

// A program of its own, since a runtime that was opened once stays: what can't be opened is tried first.
TEST(MissingRuntime, isNotTakenFromALibraryWithoutItsCalls)
{
    OnnxRuntime::useLibraries({QStringLiteral("libz.so.1")});
    QString error;
    EXPECT_EQ(OnnxRuntime::shared(&error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("libz.so.1"))) << qPrintable(error);
}

TEST(MissingRuntime, leavesAVariableThatIsSetAsItIs)
{
    OnnxRuntime::useLibraries({QStringLiteral("/no/such/libonnxruntime.so.1")});
    qputenv("ORT_DISABLE_TELEMETRY", "true");
    EXPECT_EQ(OnnxRuntime::shared(), nullptr);
    EXPECT_EQ(qgetenv("ORT_DISABLE_TELEMETRY"), QByteArray("true"));
    qunsetenv("ORT_DISABLE_TELEMETRY");
    EXPECT_EQ(OnnxRuntime::shared(), nullptr);
    EXPECT_EQ(qgetenv("ORT_DISABLE_TELEMETRY"), QByteArray("1"));
}

TEST(MissingRuntime, isToldInASentenceAndLookedForAgainLater)
{
    OnnxRuntime::useLibraries({QStringLiteral("/no/such/libonnxruntime.so.1")});
    QString error;
    EXPECT_EQ(OnnxRuntime::shared(&error), nullptr);
    EXPECT_TRUE(
        error.startsWith(QStringLiteral("the inference runtime (libonnxruntime.so.1) can't be used: ")))
        << qPrintable(error);
    EXPECT_TRUE(error.contains(QStringLiteral("/no/such/libonnxruntime.so.1"))) << qPrintable(error);

    QString loadError;
    EXPECT_FALSE(
        VisionEncoder::load(testEncoderPath(QStringLiteral("openai/ClipVisionEncoder.onnx")), &loadError));
    EXPECT_EQ(loadError, error);

    OnnxRuntime::useLibraries(OnnxRuntime::libraryCandidates());
    EXPECT_NE(OnnxRuntime::shared(&error), nullptr) << qPrintable(error);
}
