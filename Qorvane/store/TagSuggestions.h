#pragma once

#include <QStringList>

namespace Qorvane {

/// The entries of `tags`, in their order, that begin with `lowered`, a text in lower case, when they are in
/// lower case themselves. Any thread.
QStringList tagsBeginningWith(const QStringList &tags, const QString &lowered);

/// One of `stored` and one of `predefined` in turns, at most `limit`; of those that differ in case only, the
/// first. Any thread.
QStringList interleavedTags(const QStringList &stored, const QStringList &predefined, qsizetype limit);

} // namespace Qorvane
