#include "media/VideoInput.h"

#include <QByteArray>
#include <QFile>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <mutex>

namespace Qorvane {

namespace {

// The containers that the video extensions stand for, whichever of them a file really is. Left out on purpose
// are those that name other files or addresses to open (play lists, concatenations), and the still pictures.
constexpr const char *allowedContainers =
    "mov,matroska,avi,asf,flv,ogg,mpegts,mpeg,mpegvideo,m4v,h264,hevc,mxf,r3d,dv,nut,rm,ivf,av1";

// Twice the largest frame that cameras record today (12K by 6.5K): what is more is taken for an attack on
// memory.
constexpr int64_t maxPixels = 160'000'000;

int isInterrupted(void *input)
{
    return static_cast<const VideoInput *>(input)->isOutOfTime();
}

// Reads are bounded in time only where the file answers at all, which a pipe without a writer never does.
bool isRegularFile(const QString &path, QString *error)
{
    std::error_code code;
    const bool isRegular = std::filesystem::is_regular_file(QFile::encodeName(path).toStdString(), code);
    if (!isRegular && error)
        *error = code ? QString::fromLocal8Bit(code.message().c_str()) : QStringLiteral("not a regular file");
    return isRegular;
}

const int32_t *displayMatrix(const AVStream *stream)
{
    constexpr size_t matrixSize = 9 * sizeof(int32_t);
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    // From FFmpeg 6.1 on the side data belong to the codec parameters; 7.0 has no other place for them.
    const AVPacketSideData *data = av_packet_side_data_get(
        stream->codecpar->coded_side_data, stream->codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data && data->size >= matrixSize ? reinterpret_cast<const int32_t *>(data->data) : nullptr;
#else
    size_t size = 0;
    const uint8_t *data = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return data && size >= matrixSize ? reinterpret_cast<const int32_t *>(data) : nullptr;
#endif
}

constexpr int sign(int32_t value)
{
    return (value > 0) - (value < 0);
}

} // namespace

QString libavErrorText(int code)
{
    if (code == 0)
        return {};
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text = {};
    av_strerror(code, text.data(), text.size());
    return QString::fromUtf8(text.data());
}

VideoInput::VideoInput(std::chrono::milliseconds timeAllowed)
    : m_deadline(std::chrono::steady_clock::now() + timeAllowed)
{
}

VideoInput::~VideoInput()
{
    avformat_close_input(&m_format);
}

std::unique_ptr<VideoInput> VideoInput::open(const QString &path, std::chrono::milliseconds timeAllowed,
                                             QString *error)
{
    // Its remarks on damaged files go to standard error by default, where nobody asked for them.
    static std::once_flag silencing;
    std::call_once(silencing, [] { av_log_set_level(AV_LOG_QUIET); });

    if (!isRegularFile(path, error))
        return nullptr;
    std::unique_ptr<VideoInput> input(new VideoInput(timeAllowed)); // the constructor is private
    if (!input->openFile(path, error) || !input->findStream(error))
        return nullptr;
    return input;
}

bool VideoInput::openFile(const QString &path, QString *error)
{
    m_format = avformat_alloc_context();
    if (!m_format)
        return false;
    m_format->interrupt_callback = {isInterrupted, this};

    AVDictionary *options = nullptr;
    av_dict_set(&options, "format_whitelist", allowedContainers, 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    // The scheme keeps a name with a colon in it from being read as an address.
    const QByteArray address = "file:" + QFile::encodeName(path);
    const int result = avformat_open_input(&m_format, address.constData(), nullptr, &options);
    av_dict_free(&options);
    if (result < 0 && error)
        *error = isOutOfTime() ? QStringLiteral("it took too long") : libavErrorText(result);
    return result >= 0;
}

bool VideoInput::isDescribedByHeader() const
{
    if (m_format->duration <= 0)
        return false;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        const AVCodecParameters *parameters = m_format->streams[i]->codecpar;
        if (parameters->codec_type == AVMEDIA_TYPE_VIDEO)
            return parameters->codec_id != AV_CODEC_ID_NONE && parameters->width > 0 &&
                   parameters->height > 0;
    }
    return false;
}

bool VideoInput::findStream(QString *error)
{
    // Where the header tells all, reading on to find out would cost several times what the frame itself
    // costs. What it finds out is a help, not a condition: a damaged file may still have its first frame.
    if (!isDescribedByHeader())
        avformat_find_stream_info(m_format, nullptr);
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        AVStream *stream = m_format->streams[i];
        const bool isPictureTrack =
            stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
            !(stream->disposition & (AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS));
        if (isPictureTrack && !m_stream)
            m_stream = stream;
        else
            stream->discard = AVDISCARD_ALL;
    }
    if (!m_stream && error)
        *error = isOutOfTime() ? QStringLiteral("it took too long") : QStringLiteral("no picture track");
    return m_stream;
}

double VideoInput::durationSeconds() const
{
    return m_format->duration > 0 ? double(m_format->duration) / AV_TIME_BASE : 0;
}

QTransform VideoInput::uprightTransform() const
{
    const int32_t *matrix = displayMatrix(m_stream);
    if (!matrix)
        return {};
    // Rows are {a, b, u}, {c, d, v}, {x, y, w}. Only quarter turns and mirrors mean something for a picture
    // that is to be upright; scales are left to the pixel's shape, anything between goes to the nearest of
    // them.
    const bool isUpright = std::abs(double(matrix[0])) >= std::abs(double(matrix[1]));
    const QTransform transform = isUpright ? QTransform(sign(matrix[0]), 0, 0, sign(matrix[4]), 0, 0)
                                           : QTransform(0, sign(matrix[1]), sign(matrix[3]), 0, 0, 0);
    return transform.isInvertible() ? transform : QTransform();
}

PacketPointer VideoInput::nextPacket()
{
    while (!isOutOfTime()) {
        PacketPointer packet(av_packet_alloc());
        if (!packet || av_read_frame(m_format, packet.get()) < 0)
            return nullptr;
        if (packet->stream_index == m_stream->index)
            return packet;
    }
    return nullptr;
}

void VideoInput::seekToNearestKeyFrame(double seconds)
{
    if (seconds <= 0)
        return;
    int64_t target = av_rescale_q(std::llround(seconds * 600), {1, 600}, m_stream->time_base);
    if (m_format->start_time != AV_NOPTS_VALUE)
        target += av_rescale_q(m_format->start_time, {1, AV_TIME_BASE}, m_stream->time_base);
    if (av_seek_frame(m_format, m_stream->index, target, AVSEEK_FLAG_BACKWARD) < 0)
        return;

    // The seek went to the key frame before. Some containers load their index only then, so it is asked now.
    const AVIndexEntry *before =
        avformat_index_get_entry_from_timestamp(m_stream, target, AVSEEK_FLAG_BACKWARD);
    const AVIndexEntry *after = avformat_index_get_entry_from_timestamp(m_stream, target, 0);
    if (before && after && after->timestamp - target < target - before->timestamp)
        av_seek_frame(m_format, m_stream->index, after->timestamp, AVSEEK_FLAG_BACKWARD);
}

void VideoInput::rewind()
{
    // Broadcast streams are searched by guessing from time stamps, which can miss the first pictures; their
    // start is byte 0. The others know where their start is, and some of them can't be read from byte 0
    // again.
    const int64_t start = m_format->start_time != AV_NOPTS_VALUE ? m_format->start_time : 0;
    const bool isBroadcast = m_format->iformat->flags & AVFMT_TS_DISCONT;
    if (isBroadcast || avformat_seek_file(m_format, -1, INT64_MIN, start, start, 0) < 0)
        av_seek_frame(m_format, -1, 0, AVSEEK_FLAG_BYTE);
}

CodecContextPointer VideoInput::makeDecoder(QString *error) const
{
    const AVCodec *codec = avcodec_find_decoder(m_stream->codecpar->codec_id);
    if (!codec) {
        std::array<char, AV_FOURCC_MAX_STRING_SIZE> tag = {};
        av_fourcc_make_string(tag.data(), m_stream->codecpar->codec_tag);
        if (error)
            *error = QStringLiteral("no decoder for its format (%1)").arg(QString::fromLatin1(tag.data()));
        return nullptr;
    }
    CodecContextPointer decoder(avcodec_alloc_context3(codec));
    int result = decoder ? avcodec_parameters_to_context(decoder.get(), m_stream->codecpar) : AVERROR(ENOMEM);
    if (result >= 0) {
        decoder->pkt_timebase = m_stream->time_base;
        decoder->max_pixels = maxPixels;
        // One frame is wanted: more threads only delay it, and several files are in work at once anyway.
        decoder->thread_count = 1;
        result = avcodec_open2(decoder.get(), codec, nullptr);
    }
    if (result >= 0)
        return decoder;
    if (error)
        *error = libavErrorText(result);
    return nullptr;
}

} // namespace Qorvane
