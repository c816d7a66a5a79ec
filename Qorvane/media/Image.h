#pragma once

#include <QImage>
#include <QMetaType>
#include <QSize>
#include <QString>

#include <memory>

namespace Qorvane {

/// A picture as a value: cheap to copy, immutable, safe to share between threads. It comes from pixels, or
/// from a file that is decoded when somebody first needs the pixels, so that handing out a thumbnail that
/// nobody draws costs no decode. The file is then decoded once for all copies together.
class Image
{
public:
    /// No picture.
    Image() = default;
    /// A picture from pixels; null pixels make no picture.
    explicit Image(const QImage &pixels);
    /// The picture in the file at `path`, read at first use and by its content, whatever its name says. Its
    /// orientation tag is not applied. A file that is missing or can't be decoded then makes no picture, for
    /// good.
    static Image fromFile(const QString &path);

    /// Whether there is no picture. Decodes. Any thread, but expect the time of a decode.
    bool isNull() const;
    /// The pixels; null when there is no picture. Decodes. Any thread, but expect the time of a decode.
    QImage pixels() const;
    /// Width and height in pixels; empty when there is no picture. Decodes.
    QSize size() const { return pixels().size(); }

    /// Whether `pixels` would answer at once. Any thread.
    bool isDecoded() const;

private:
    struct Content;

    explicit Image(std::shared_ptr<Content> content);

    std::shared_ptr<Content> m_content; // none: no picture
};

} // namespace Qorvane

Q_DECLARE_METATYPE(Qorvane::Image)
