#include "encoders/StarterEncoders.h"

#include "encoders/TestEncoders.h"

#include <QDir>
#include <QFile>

namespace Qorvane {

QString starterFolder()
{
    // Written last by scripts/starter.sh: a folder with it is whole.
    const QString folder = QStringLiteral(QORVANE_STARTER_DIR);
    return QFile::exists(folder + QStringLiteral("/recipe")) ? folder : QString();
}

bool installStarter()
{
    const QString starter = starterFolder();
    if (starter.isEmpty())
        return false;
    for (const char *name :
         {"ClipVisionEncoder.onnx", "ClipTextEncoder.onnx", "vocab.json", "ChineseClipVisionEncoder.onnx",
          "ChineseClipTextEncoder.onnx", "chinese_vocab.json"}) {
        const QString file = u'/' + QString::fromLatin1(name);
        if (!QFile::link(starter + file, userModelsFolder() + file))
            return false;
    }
    return true;
}

} // namespace Qorvane
