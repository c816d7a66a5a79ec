#include "store/PathPattern.h"

namespace Qorvane {

QString everythingBelow(const QString &path)
{
    return path.endsWith(u'/') ? path + u'%' : path + QLatin1String("/%");
}

} // namespace Qorvane
