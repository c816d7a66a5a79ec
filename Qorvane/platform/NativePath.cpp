#include "platform/NativePath.h"

#include <QFile>

namespace Qorvane {

std::optional<QByteArray> nativePath(const QString &path)
{
    if (path.isEmpty() || path.contains(QChar::Null) || !path.isValidUtf16())
        return std::nullopt;
    return QFile::encodeName(path);
}

} // namespace Qorvane
