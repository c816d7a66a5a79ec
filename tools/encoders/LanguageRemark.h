#pragma once

#include <QString>
#include <QStringList>

namespace Qorvane::Encoders {

/// What a user whose language is Chinese should know of the encoders in `directories`: the application takes
/// the vocabulary by the language, and without the Chinese one's file it knows a few words only. Empty when
/// there is nothing to say. Reads the disk; any thread.
QString languageRemark(const QStringList &directories);

} // namespace Qorvane::Encoders
