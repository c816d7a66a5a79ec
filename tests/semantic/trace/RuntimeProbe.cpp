#include "semantic/Encoder.h"
#include "semantic/OnnxRuntime.h"
#include "semantic/Preprocessing.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>

#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

using namespace Qorvane;

// Opens the inference runtime, loads the two encoders named and runs them, for RuntimeTraceTest.sh to watch:
//
//   RuntimeProbe VISION.onnx TEXT.onnx [open-socket|write-file]
//
// The last argument has it do what the runtime must not, so that the watching is seen to work.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QString error;
    const OnnxRuntime *runtime = OnnxRuntime::shared(&error);
    const auto vision = VisionEncoder::load(arguments.value(1), &error);
    const auto text = TextEncoder::load(arguments.value(2), &error);
    if (!runtime || !vision || !text) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
        return 1;
    }
    QImage picture(encoderSide, encoderSide, QImage::Format_RGB32);
    picture.fill(Qt::red);
    constexpr int contextLength = 77;
    const EncoderResult seen = vision->predict(preprocessImage(picture).value());
    const EncoderResult read =
        text->predict(std::vector<qint32>(contextLength, 1), std::vector<qint32>(contextLength, 1));
    if (seen.features.empty() || read.features.empty()) {
        std::fputs("the encoders gave nothing\n", stderr);
        return 1;
    }
    if (arguments.value(3) == QLatin1String("open-socket"))
        ::close(::socket(AF_INET, SOCK_STREAM, 0));
    if (arguments.value(3) == QLatin1String("write-file")) {
        QFile file(QStringLiteral("written"));
        if (!file.open(QIODevice::WriteOnly))
            return 1;
    }
    std::printf("%s %s\n", qUtf8Printable(runtime->release()), qUtf8Printable(runtime->libraryPath()));
    return 0;
}
