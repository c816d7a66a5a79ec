#include "encoders/LanguageRemark.h"

#include "encoders/import/EncoderInstall.h"
#include "platform/Bundle.h"
#include "platform/ChineseLocale.h"
#include "semantic/TokenizerVocabulary.h"

#include <QFileInfo>

namespace Qorvane::Encoders {

namespace {

bool isInstalled(const QString &fileName, const QStringList &directories)
{
    const QFileInfo name(fileName);
    return Bundle::urlForResource(name.completeBaseName(), name.suffix(), directories).has_value();
}

} // namespace

QString languageRemark(const QStringList &directories)
{
    const FamilyFiles chinese = FamilyFiles::of(Family::chinese);
    if (!isChineseLocale() || isInstalled(chinese.vocabulary, directories) ||
        !isInstalled(FamilyFiles::of(Family::openai).text, directories))
        return {};
    return QStringLiteral(
               "your language is Chinese, for which Qorvane takes %1, and there is none: it will know "
               "%2 tokens only. Import a Chinese model too, or build the starter pair")
        .arg(chinese.vocabulary)
        .arg(baseVocabulary().size());
}

} // namespace Qorvane::Encoders
