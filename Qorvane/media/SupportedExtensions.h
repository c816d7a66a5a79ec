#pragma once

#include <QSet>
#include <QString>

namespace Qorvane {

class FileUrl;

/// The 56 lower-case extensions under which a file counts as an image. Any thread.
const QSet<QString> &supportedImageExtensions();

/// The 19 lower-case extensions under which a file counts as a video. Any thread.
const QSet<QString> &supportedVideoExtensions();

/// True when the file's extension, whatever its case, is in either set. The file itself is not looked at.
bool isMediaFile(const FileUrl &file);

/// True when the file's extension, whatever its case, is one of a video.
bool isVideoFile(const FileUrl &file);

} // namespace Qorvane
