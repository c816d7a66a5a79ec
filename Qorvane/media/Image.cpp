#include "media/Image.h"

#include <QImageReader>

#include <atomic>
#include <mutex>
#include <utility>

namespace Qorvane {

struct Image::Content
{
    QString path; // empty when the pixels were given
    std::once_flag decoding;
    std::atomic_bool isDecoded = false;
    QImage pixels; // read only after `decoding` is done

    const QImage &decoded()
    {
        std::call_once(decoding, [this] {
            if (!path.isEmpty()) {
                QImageReader reader(path);
                reader.setDecideFormatFromContent(true);
                reader.setAutoTransform(false);
                pixels = reader.read();
            }
            isDecoded = true;
        });
        return pixels;
    }
};

Image::Image(const QImage &pixels)
{
    if (pixels.isNull())
        return;
    m_content = std::make_shared<Content>();
    m_content->pixels = pixels;
    m_content->isDecoded = true;
}

Image::Image(std::shared_ptr<Content> content)
    : m_content(std::move(content))
{
}

Image Image::fromFile(const QString &path)
{
    auto content = std::make_shared<Content>();
    content->path = path;
    return Image(std::move(content));
}

bool Image::isNull() const
{
    return !m_content || m_content->decoded().isNull();
}

QImage Image::pixels() const
{
    return m_content ? m_content->decoded() : QImage();
}

bool Image::isDecoded() const
{
    return !m_content || m_content->isDecoded;
}

} // namespace Qorvane
