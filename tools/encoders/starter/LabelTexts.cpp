#include "encoders/starter/LabelTexts.h"

#include <QFile>
#include <QStringList>

namespace Qorvane::Encoders {

std::vector<LabelText> labelTexts()
{
    QFile file(QStringLiteral(":/encoders/starter/labels.tsv"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The program was built without its label texts.");
    std::vector<LabelText> texts;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList cells = line.split(u'\t');
        texts.push_back({.englishName = cells.value(0),
                         .englishPhrase = cells.value(1),
                         .chineseName = cells.value(2),
                         .chinesePhrase = cells.value(3)});
    }
    return texts;
}

} // namespace Qorvane::Encoders
