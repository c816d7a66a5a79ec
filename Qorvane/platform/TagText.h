#pragma once

#include <QString>
#include <QStringList>

namespace Qorvane {

/// The tags of `text`, a list with `separator` between one tag and the next. Lines may break anywhere between
/// tags. Any thread.
inline QStringList tagsOfText(QStringView text, QChar separator)
{
    QStringList tags;
    for (const QStringView tag : text.split(separator))
        tags.append(tag.trimmed().toString());
    return tags;
}

} // namespace Qorvane
