#include "media/VideoFrames.h"

#include "media/VideoInput.h"
#include "media/VideoPicture.h"
#include "platform/MainQueue.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

// Long enough for a large file on a slow disk, short enough that one hostile file doesn't hold up a run.
constexpr std::chrono::milliseconds timeAllowed = std::chrono::seconds(20);

/// Where a grab may begin.
enum class GrabStart {
    keyFrame,  ///< only where the container promises that a picture begins
    anyPacket, ///< anywhere, for files that promise nothing
};

// Containers mark packets as key frames that aren't, and the decoder then makes grey mud of them. So many
// frames are looked at for one that stands by itself: more than the distance between key frames in any common
// setting.
constexpr int framesTried = 300;

// Whether the frame was decoded in full and from itself alone.
bool isWhole(const AVFrame &frame)
{
    const bool isDerived = frame.pict_type == AV_PICTURE_TYPE_P || frame.pict_type == AV_PICTURE_TYPE_B ||
                           frame.pict_type == AV_PICTURE_TYPE_S;
    return !isDerived && frame.decode_error_flags == 0 && !(frame.flags & AV_FRAME_FLAG_CORRUPT);
}

/// Finds the first good frame from where the input stands.
class FrameGrab
{
public:
    FrameGrab(VideoInput &input, AVCodecContext &decoder)
        : m_input(input)
        , m_decoder(decoder)
        , m_frame(av_frame_alloc())
    {
    }

    /// The last error met; 0 when there was none.
    int lastError() const { return m_lastError; }

    /// Null when there is no whole frame.
    FramePointer grab(GrabStart start)
    {
        avcodec_flush_buffers(&m_decoder);
        PacketPointer packet = firstPacket(start);
        if (!packet || !m_frame)
            return nullptr;
        if (decodeAlone(*packet))
            return std::move(m_frame);
        // A key packet that isn't enough by itself (a field of a picture, a decoder that starts late), or a
        // broken one: the usual way, packet after packet.
        avcodec_flush_buffers(&m_decoder);
        for (int i = 0; packet && i < framesTried; ++i, packet = m_input.nextPacket()) {
            if (send(packet.get()) && receive())
                return std::move(m_frame);
        }
        return send(nullptr) && receive() ? std::move(m_frame) : nullptr;
    }

    /// The first frame met that wasn't whole; null when there was none.
    FramePointer takePartial() { return std::move(m_partial); }

private:
    PacketPointer firstPacket(GrabStart start)
    {
        PacketPointer packet = m_input.nextPacket();
        while (packet && start == GrabStart::keyFrame && !(packet->flags & AV_PKT_FLAG_KEY))
            packet = m_input.nextPacket();
        return packet;
    }

    // Telling the decoder at once that nothing follows makes it give the frame out now, instead of after as
    // many further packets as it may reorder: several times faster for the usual codecs.
    bool decodeAlone(const AVPacket &packet) { return send(&packet) && send(nullptr) && receive(); }

    bool send(const AVPacket *packet) { return keep(avcodec_send_packet(&m_decoder, packet)); }

    // True for a whole frame. The first of the others is set aside.
    bool receive()
    {
        while (keep(avcodec_receive_frame(&m_decoder, m_frame.get()))) {
            if (isWhole(*m_frame))
                return true;
            if (!m_partial)
                m_partial.reset(av_frame_clone(m_frame.get()));
        }
        return false;
    }

    bool keep(int result)
    {
        // Neither of these says that something is wrong.
        if (result < 0 && result != AVERROR(EAGAIN) && result != AVERROR_EOF)
            m_lastError = result;
        return result >= 0;
    }

    VideoInput &m_input;
    AVCodecContext &m_decoder;
    FramePointer m_frame;
    FramePointer m_partial;
    int m_lastError = 0;
};

} // namespace

double videoFrameSeconds(double durationSeconds)
{
    constexpr double timescale = 600; // divides by the frame rates of film, PAL and NTSC alike
    if (!(durationSeconds > 0))
        return 0;
    return std::round(std::min(durationSeconds * 0.1, 1.0) * timescale) / timescale;
}

std::optional<QImage> generateVideoFrame(const QString &path, int maxSize, QString *error)
{
    const auto fail = [error](const QString &reason) {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    if (MainQueue::isCurrent())
        return fail(QStringLiteral("videos are not opened on the GUI thread"));

    QString reason;
    const std::unique_ptr<VideoInput> input = VideoInput::open(path, timeAllowed, &reason);
    const CodecContextPointer decoder = input ? input->makeDecoder(&reason) : nullptr;
    if (!decoder)
        return fail(reason);

    input->seekToNearestKeyFrame(videoFrameSeconds(input->durationSeconds()));
    FrameGrab frameGrab(*input, *decoder);
    FramePointer frame = frameGrab.grab(GrabStart::keyFrame);
    if (!frame && !input->isOutOfTime()) {
        // From the sampling time on nothing decodes well, which happens in files cut short and in those that
        // lie about their key frames: any frame is better than none.
        input->rewind();
        frame = frameGrab.grab(GrabStart::anyPacket);
    }
    if (!frame)
        frame = frameGrab.takePartial();
    if (!frame)
        return fail(input->isOutOfTime() ? QStringLiteral("it took too long")
                                         : libavErrorText(frameGrab.lastError()));

    const AVRational aspect = av_guess_sample_aspect_ratio(input->format(), input->stream(), frame.get());
    return pictureFromFrame(*frame, aspect, input->uprightTransform(), maxSize, error);
}

} // namespace Qorvane
