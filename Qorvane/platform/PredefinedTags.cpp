#include "platform/PredefinedTags.h"

#include "platform/ChineseLocale.h"

namespace Qorvane {

const QStringList &predefinedTags()
{
    return isChineseLocale() ? predefinedTagsChinese() : predefinedTagsEnglish();
}

} // namespace Qorvane
