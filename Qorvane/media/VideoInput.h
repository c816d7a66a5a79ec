#pragma once

#include <QString>
#include <QTransform>

#include <chrono>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Qorvane {

struct PacketDeleter
{
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
using PacketPointer = std::unique_ptr<AVPacket, PacketDeleter>;

struct FrameDeleter
{
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
using FramePointer = std::unique_ptr<AVFrame, FrameDeleter>;

struct CodecContextDeleter
{
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
};
using CodecContextPointer = std::unique_ptr<AVCodecContext, CodecContextDeleter>;

/// The library's own words for one of its error codes; empty for 0.
QString libavErrorText(int code);

/// A video file opened for reading one picture track. Every call that reads gives up when the time allowed at
/// opening has passed. One thread at a time, not the GUI's.
class VideoInput
{
public:
    /// Nothing when there is no such video; the reason is put into `error`.
    static std::unique_ptr<VideoInput> open(const QString &path, std::chrono::milliseconds timeAllowed,
                                            QString *error);
    ~VideoInput();
    VideoInput(const VideoInput &) = delete;
    VideoInput &operator=(const VideoInput &) = delete;

    AVFormatContext *format() const { return m_format; }
    /// The first picture track that isn't a cover.
    AVStream *stream() const { return m_stream; }
    /// Length in seconds; 0 when the file doesn't tell.
    double durationSeconds() const;
    /// Quarter turns and mirrors that bring the track's pictures upright, for coordinates with y downwards.
    QTransform uprightTransform() const;
    bool isOutOfTime() const { return std::chrono::steady_clock::now() >= m_deadline; }

    /// The next packet of the track; null at the end, after a read error, and when the time is up.
    PacketPointer nextPacket();
    /// Goes to the key frame nearest to `seconds` after the start, as far as the file can be searched.
    void seekToNearestKeyFrame(double seconds);
    /// Goes back to the very start.
    void rewind();
    /// A decoder for the track, ready to use; null, with the reason in `error`, when there is none.
    CodecContextPointer makeDecoder(QString *error) const;

private:
    explicit VideoInput(std::chrono::milliseconds timeAllowed);

    bool openFile(const QString &path, QString *error);
    bool findStream(QString *error);
    bool isDescribedByHeader() const;

    const std::chrono::steady_clock::time_point m_deadline;
    AVFormatContext *m_format = nullptr;
    AVStream *m_stream = nullptr;
};

} // namespace Qorvane
