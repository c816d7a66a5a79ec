#pragma once

#include "media/ContentType.h"

#include <QImage>
#include <QString>

#include <memory>
#include <optional>

namespace Qorvane {

class InputFile;

/// One still picture on disk, opened for decoding. What decodes it goes by the content, and by the extension
/// only where the content doesn't tell. Of files that hold several pictures it is the first, of icons the
/// largest.
///
/// Every picture given is 8-bit sRGB: QImage::Format_RGB32 when opaque, QImage::Format_ARGB32_Premultiplied
/// when it has transparency. It is unrotated: apply orientation() to see it upright.
///
/// Files are taken as hostile: each decode is bounded in pixels, memory and time (decoders/DecodeLimits.h),
/// and a failure gives nothing and one line of reason. Nothing is read that the decode doesn't need, and the
/// file stays closed once the last copy of the source is gone. Any thread; one source may serve several at
/// once.
class ImageSource
{
public:
    /// Opens `path` and looks at its first bytes. Nothing when it can't be read, isn't a regular file, is
    /// empty, or is of no kind that can be decoded. Never blocks on a pipe or a device.
    static std::optional<ImageSource> open(const QString &path, QString *error = nullptr);

    /// A small picture whose larger side is at most `maxPixelSize` pixels (> 0) and that is never enlarged. A
    /// preview embedded in the file is preferred, even one much smaller than `maxPixelSize`; only if there is
    /// none that decodes is the picture itself reduced.
    std::optional<QImage> thumbnail(int maxPixelSize, QString *error = nullptr) const;

    /// The picture itself, reduced to at most `maxPixelSize` pixels on its larger side and never enlarged. An
    /// embedded preview is never used, except for files whose picture itself can't be decoded here at all
    /// (X3F).
    std::optional<QImage> boundedImage(int maxPixelSize, QString *error = nullptr) const;

    /// The picture itself at its full pixel size.
    std::optional<QImage> fullImage(QString *error = nullptr) const;

    /// The EXIF orientation, 1 to 8, of the pictures given. 1 when the file has none, when it is out of range
    /// (whoever draws by it may stop the program over such a value, which a file must not be able to bring
    /// about), and where the decoder has turned the picture already. Reads the file's metadata at each call.
    int orientation() const;

    ContentType contentType() const { return m_type; }

private:
    ImageSource(std::shared_ptr<const InputFile> file, ContentType type);

    std::shared_ptr<const InputFile> m_file;
    ContentType m_type;
};

} // namespace Qorvane
