#include "encoders/import/PublishedLicence.h"

#include <QFile>
#include <QFileInfo>

namespace Qorvane::Encoders {

namespace {

// Licence texts are a few kilobytes.
constexpr qint64 greatestLicence = qint64(1) << 20;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.read(greatestLicence) : QByteArray();
}

/// The lines about the licence between the two "---" that a page of a model begins with.
QByteArray licenceLines(const QByteArray &readme)
{
    const QList<QByteArray> lines = readme.split('\n');
    if (lines.constFirst().trimmed() != "---")
        return {};
    QByteArray said;
    for (const QByteArray &line : lines.sliced(1)) {
        if (line.trimmed() == "---")
            return said;
        if (line.startsWith("license"))
            said += line.trimmed() + '\n';
    }
    return {};
}

} // namespace

QByteArray publishedLicence(const ModelFolder &folder)
{
    if (const QByteArray licence = contentOf(folder.licence); !licence.isEmpty())
        return licence;
    const QByteArray said = licenceLines(contentOf(folder.readme));
    return said.isEmpty() ? said
                          : "No licence text came with the model. Its " +
                                QFileInfo(folder.readme).fileName().toUtf8() + " says:\n" + said;
}

} // namespace Qorvane::Encoders
