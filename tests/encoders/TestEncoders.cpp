#include "encoders/TestEncoders.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Qorvane {

QString testEncoderPath(const QString &relativePath)
{
    return QStringLiteral(QORVANE_TEST_ENCODERS_DIR "/") + relativePath;
}

QString userModelsFolder()
{
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/models");
    QDir().mkpath(folder);
    return folder;
}

bool installTestEncoder(const QString &relativePath, const QString &name)
{
    const QString source = testEncoderPath(relativePath);
    const QString target = userModelsFolder() + u'/' + (name.isEmpty() ? QFileInfo(source).fileName() : name);
    QFile::remove(target);
    return QFile::copy(source, target);
}

bool installTestFamily(const QString &family)
{
    const QDir folder(testEncoderPath(family));
    const QStringList names = folder.entryList(QDir::Files);
    bool isInstalled = !names.isEmpty();
    for (const QString &name : names)
        isInstalled = installTestEncoder(family + u'/' + name) && isInstalled;
    return isInstalled;
}

void removeInstalledEncoders()
{
    QDir(userModelsFolder()).removeRecursively();
}

QImage plainPicture(QColor colour, QSize size)
{
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(colour);
    return picture;
}

} // namespace Qorvane
