#pragma once

#include <QByteArray>
#include <QImage>

#include <memory>

namespace Qorvane {

/// How a picture's samples lie in memory before they become sRGB.
enum class SampleLayout {
    rgb32, ///< QRgb; its fourth byte is carried over
    gray8,
    cmyk8,         ///< 255 is full ink
    cmyk8Inverted, ///< 255 is no ink, as Adobe's programs write JPEG
};

/// A conversion from the colours of an ICC profile to sRGB. Immutable; any thread, several at once.
class ColorTransform
{
public:
    /// The conversion from `profile` for samples that lie as `layout` says. Kept per profile, since building
    /// one takes as long as decoding a small picture. Nothing when the profile is damaged or belongs to
    /// samples of another kind; whoever asks then goes on as if there were none.
    static std::shared_ptr<const ColorTransform> toSrgb(const QByteArray &profile, SampleLayout layout);

    ~ColorTransform();
    ColorTransform(const ColorTransform &) = delete;
    ColorTransform &operator=(const ColorTransform &) = delete;

    /// Converts `count` pixels from `samples` to `pixels`, which may be the same place for
    /// SampleLayout::rgb32.
    void apply(const void *samples, QRgb *pixels, qsizetype count) const;

private:
    explicit ColorTransform(void *handle);

    void *m_handle; // cmsHTRANSFORM, none where the profile is sRGB itself
};

/// Converts `image` (Format_RGB32 or Format_ARGB32_Premultiplied) in place from the colours of `profile` to
/// sRGB and tags it so. An empty or useless profile leaves the pixels as they are.
void convertToSrgb(QImage &image, const QByteArray &profile);

/// Converts `count` CMYK pixels to sRGB where no profile says how: each ink takes its complement away.
void plainCmykToSrgb(const uchar *samples, QRgb *pixels, qsizetype count, bool isInverted);

} // namespace Qorvane
