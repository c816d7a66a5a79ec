#include "platform/ChineseLocale.h"

#include "platform/Languages.h"

namespace Qorvane {

bool isChineseLocale()
{
    // Only the first wish counts: one who reads Chinese second isn't served in Chinese for that.
    return Languages::preferred().value(0).startsWith(u"zh", Qt::CaseInsensitive) ||
           Languages::currentLanguageCode().startsWith(u"zh", Qt::CaseInsensitive);
}

} // namespace Qorvane
