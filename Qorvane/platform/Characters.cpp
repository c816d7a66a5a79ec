#include "platform/Characters.h"

#include <QTextBoundaryFinder>

namespace Qorvane {

QStringList characters(const QString &text)
{
    const QList<qsizetype> boundaries = characterBoundaries(text);
    QStringList result;
    result.reserve(boundaries.size() - 1);
    for (qsizetype i = 1; i < boundaries.size(); ++i)
        result.append(text.mid(boundaries[i - 1], boundaries[i] - boundaries[i - 1]));
    return result;
}

qsizetype characterCount(const QString &text)
{
    return characterBoundaries(text).size() - 1;
}

QList<qsizetype> characterBoundaries(const QString &text)
{
    QList<qsizetype> boundaries{0};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype at = finder.toNextBoundary(); at >= 0; at = finder.toNextBoundary())
        boundaries.append(at);
    return boundaries;
}

} // namespace Qorvane
