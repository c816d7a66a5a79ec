#include "media/decoders/ColorTransform.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QHash>
#include <QMutex>
#include <QMutexLocker>

#include <lcms2.h>

#include <array>

namespace Qorvane {

namespace {

// The largest printer profiles have 8 MB; more is no profile.
constexpr qsizetype maximumProfileSize = 16 << 20;
// A library rarely holds pictures of more than a handful of profiles; a transform may weigh a megabyte.
constexpr qsizetype maximumKeptTransforms = 16;

#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr cmsUInt32Number rgb32Format = TYPE_BGRA_8;
#else
constexpr cmsUInt32Number rgb32Format = TYPE_ARGB_8;
#endif

struct Profile
{
    explicit Profile(cmsHPROFILE profile)
        : handle(profile)
    {
    }
    ~Profile()
    {
        if (handle)
            cmsCloseProfile(handle);
    }
    Profile(const Profile &) = delete;
    Profile &operator=(const Profile &) = delete;
    cmsHPROFILE handle;
};

cmsUInt32Number sampleFormat(SampleLayout layout)
{
    switch (layout) {
    case SampleLayout::rgb32:
        return rgb32Format;
    case SampleLayout::gray8:
        return TYPE_GRAY_8;
    case SampleLayout::cmyk8:
        return TYPE_CMYK_8;
    case SampleLayout::cmyk8Inverted:
        return TYPE_CMYK_8_REV;
    }
    return 0;
}

cmsColorSpaceSignature colorSpace(SampleLayout layout)
{
    switch (layout) {
    case SampleLayout::rgb32:
        return cmsSigRgbData;
    case SampleLayout::gray8:
        return cmsSigGrayData;
    case SampleLayout::cmyk8:
    case SampleLayout::cmyk8Inverted:
        return cmsSigCmykData;
    }
    return cmsSigRgbData;
}

/// Most photographs carry an sRGB profile in one of its many spellings; telling it by what it does to a grid
/// of colours saves converting every picture to what it is already.
bool isIdentity(cmsHTRANSFORM transform)
{
    constexpr int step = 51; // six values a channel, 216 colours
    std::array<QRgb, 216> colours = {};
    size_t count = 0;
    for (int red = 0; red < 256; red += step) {
        for (int green = 0; green < 256; green += step) {
            for (int blue = 0; blue < 256; blue += step)
                colours[count++] = qRgb(red, green, blue);
        }
    }
    std::array<QRgb, 216> converted = colours;
    cmsDoTransform(transform, colours.data(), converted.data(), cmsUInt32Number(count));
    const auto isNear = [](int a, int b) { return qAbs(a - b) <= 1; };
    for (size_t i = 0; i < count; ++i) {
        if (!isNear(qRed(colours[i]), qRed(converted[i])) ||
            !isNear(qGreen(colours[i]), qGreen(converted[i])) ||
            !isNear(qBlue(colours[i]), qBlue(converted[i])))
            return false;
    }
    return true;
}

/// Nothing when the profile is unfit; a null handle would stand for a transform that changes nothing.
std::optional<cmsHTRANSFORM> buildTransform(const QByteArray &bytes, SampleLayout layout)
{
    const Profile source(cmsOpenProfileFromMem(bytes.constData(), cmsUInt32Number(bytes.size())));
    const Profile target(cmsCreate_sRGBProfile());
    if (!source.handle || !target.handle || cmsGetColorSpace(source.handle) != colorSpace(layout))
        return std::nullopt;
    cmsUInt32Number flags = cmsFLAGS_NOCACHE; // so that threads may share it
    if (layout == SampleLayout::rgb32)
        flags |= cmsFLAGS_COPY_ALPHA;
    const cmsHTRANSFORM transform = cmsCreateTransform(source.handle, sampleFormat(layout), target.handle,
                                                       rgb32Format, INTENT_PERCEPTUAL, flags);
    if (!transform)
        return std::nullopt;
    if (layout == SampleLayout::rgb32 && isIdentity(transform)) {
        cmsDeleteTransform(transform);
        return nullptr;
    }
    return transform;
}

} // namespace

std::shared_ptr<const ColorTransform> ColorTransform::toSrgb(const QByteArray &profile, SampleLayout layout)
{
    if (profile.isEmpty() || profile.size() > maximumProfileSize)
        return {};
    static QMutex mutex;
    static QHash<QByteArray, std::shared_ptr<const ColorTransform>> kept;

    const QByteArray key = QCryptographicHash::hash(profile, QCryptographicHash::Sha1) + char(layout);
    QMutexLocker lock(&mutex);
    if (const auto found = kept.constFind(key); found != kept.constEnd())
        return *found;
    lock.unlock();
    std::shared_ptr<const ColorTransform> transform;
    if (const auto handle = buildTransform(profile, layout))
        transform.reset(new ColorTransform(*handle));
    lock.relock();
    if (kept.size() >= maximumKeptTransforms)
        kept.clear();
    kept.insert(key, transform);
    return transform;
}

ColorTransform::ColorTransform(void *handle)
    : m_handle(handle)
{
}

ColorTransform::~ColorTransform()
{
    if (m_handle)
        cmsDeleteTransform(m_handle);
}

void ColorTransform::apply(const void *samples, QRgb *pixels, qsizetype count) const
{
    if (m_handle)
        cmsDoTransform(m_handle, samples, pixels, cmsUInt32Number(count));
    else if (samples != pixels)
        std::copy_n(static_cast<const QRgb *>(samples), count, pixels);
}

void convertToSrgb(QImage &image, const QByteArray &profile)
{
    const auto transform = ColorTransform::toSrgb(profile, SampleLayout::rgb32);
    if (transform) {
        const QImage::Format format = image.format();
        if (format == QImage::Format_ARGB32_Premultiplied)
            image.convertTo(QImage::Format_ARGB32);
        for (int y = 0; y < image.height(); ++y) {
            auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
            transform->apply(row, row, image.width());
        }
        image.convertTo(format);
    }
    image.setColorSpace(QColorSpace(QColorSpace::SRgb));
}

void plainCmykToSrgb(const uchar *samples, QRgb *pixels, qsizetype count, bool isInverted)
{
    const uchar flip = isInverted ? 0 : 0xff;
    for (qsizetype i = 0; i < count; ++i, samples += 4) {
        const auto paper = [samples, flip](int ink) { return int(uchar(samples[ink] ^ flip)); };
        const int black = paper(3);
        pixels[i] = qRgb(paper(0) * black / 255, paper(1) * black / 255, paper(2) * black / 255);
    }
}

} // namespace Qorvane
