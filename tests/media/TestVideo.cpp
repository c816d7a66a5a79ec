#include "media/TestVideo.h"

#include "media/VideoInput.h"

#include <QFile>
#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace Qorvane {

namespace {

struct OutputDeleter
{
    void operator()(AVFormatContext *format) const
    {
        avio_closep(&format->pb);
        avformat_free_context(format);
    }
};
using OutputPointer = std::unique_ptr<AVFormatContext, OutputDeleter>;

void require(int result, const char *what)
{
    if (result < 0)
        throw std::runtime_error(std::string(what) + ": " + libavErrorText(result).toStdString());
}

template <typename T>
T *require(T *pointer, const char *what)
{
    if (!pointer)
        throw std::runtime_error(what);
    return pointer;
}

CodecContextPointer makeEncoder(const TestVideo &video, const AVFormatContext &output)
{
    const AVCodec *codec = require(avcodec_find_encoder_by_name(video.encoder.constData()), "encoder");
    CodecContextPointer encoder(avcodec_alloc_context3(codec));
    encoder->width = video.size.width();
    encoder->height = video.size.height();
    encoder->pix_fmt = video.pixelFormat;
    encoder->time_base = {1, video.framesPerSecond};
    encoder->framerate = {video.framesPerSecond, 1};
    encoder->sample_aspect_ratio = {video.pixelShape.width(), video.pixelShape.height()};
    encoder->gop_size = 1000; // key frames come where they are asked for
    encoder->max_b_frames = 0;
    encoder->thread_count = 1;
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality = FF_QP2LAMBDA * 2;
    if (video.isMatrixTold)
        encoder->colorspace = video.matrix;
    encoder->color_range = video.pixelFormat == AV_PIX_FMT_YUVJ420P ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    if (output.oformat->flags & AVFMT_GLOBALHEADER)
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_opt_set_int(encoder->priv_data, "sc_threshold", 1000000000, 0);
    av_opt_set(encoder->priv_data, "x265-params", "log-level=none:pools=none:frame-threads=1", 0);
    require(avcodec_open2(encoder.get(), codec, nullptr), "opening the encoder");
    return encoder;
}

void setDisplayMatrix(AVStream *stream, const TestVideo &video)
{
    if (video.quarterTurns == 0 && !video.isMirrored)
        return;
    // {a, b, u}, {c, d, v}, {x, y, w}; y points down, so that a turn from x to y is clockwise.
    static constexpr std::array<std::array<int, 4>, 4> turns = {
        {{1, 0, 0, 1}, {0, 1, -1, 0}, {-1, 0, 0, -1}, {0, -1, 1, 0}}};
    const std::array<int, 4> turn = turns[size_t(video.quarterTurns)];
    const int mirror = video.isMirrored ? -1 : 1;
    const std::array<int32_t, 9> matrix = {mirror * turn[0] * 65536,
                                           mirror * turn[1] * 65536,
                                           0,
                                           turn[2] * 65536,
                                           turn[3] * 65536,
                                           0,
                                           0,
                                           0,
                                           1 << 30};
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    AVPacketSideData *data =
        av_packet_side_data_new(&stream->codecpar->coded_side_data, &stream->codecpar->nb_coded_side_data,
                                AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix, 0);
    std::memcpy(require(data, "side data")->data, matrix.data(), sizeof matrix);
#else
    std::memcpy(
        require(av_stream_new_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix), "side data"),
        matrix.data(), sizeof matrix);
#endif
}

FramePointer frameFromPicture(const QImage &picture, const TestVideo &video, int index)
{
    FramePointer frame(av_frame_alloc());
    frame->format = video.pixelFormat;
    frame->width = video.size.width();
    frame->height = video.size.height();
    frame->pts = index;
    require(av_frame_get_buffer(frame.get(), 0), "frame");
    SwsContext *scaler = require(sws_getContext(picture.width(), picture.height(), AV_PIX_FMT_RGB32,
                                                frame->width, frame->height, video.pixelFormat,
                                                SWS_POINT | SWS_ACCURATE_RND, nullptr, nullptr, nullptr),
                                 "scaler");
    const bool isFullRange = video.pixelFormat == AV_PIX_FMT_YUVJ420P;
    sws_setColorspaceDetails(scaler, sws_getCoefficients(SWS_CS_DEFAULT), 1,
                             sws_getCoefficients(video.matrix), isFullRange, 0, 1 << 16, 1 << 16);
    const uint8_t *const data[] = {picture.constBits()};
    const int strides[] = {int(picture.bytesPerLine())};
    sws_scale(scaler, data, strides, 0, picture.height(), frame->data, frame->linesize);
    sws_freeContext(scaler);
    frame->quality = FF_QP2LAMBDA * 2;
    frame->pict_type = video.isKeyFrame(index) ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_P;
    return frame;
}

void writePackets(AVCodecContext *encoder, const AVFrame *frame, AVFormatContext *output, int extraFlags)
{
    require(avcodec_send_frame(encoder, frame), "encoding");
    const PacketPointer packet(av_packet_alloc());
    while (avcodec_receive_packet(encoder, packet.get()) >= 0) {
        packet->duration = 1;
        packet->flags |= extraFlags;
        av_packet_rescale_ts(packet.get(), encoder->time_base, output->streams[0]->time_base);
        require(av_interleaved_write_frame(output, packet.get()), "writing");
    }
}

void write(const QString &path, const TestVideo &video)
{
    const QByteArray name = QFile::encodeName(path);
    AVFormatContext *format = nullptr;
    require(avformat_alloc_output_context2(&format, nullptr, nullptr, name.constData()), "container");
    const OutputPointer output(format);
    AVStream *stream = require(avformat_new_stream(format, nullptr), "stream");
    const CodecContextPointer encoder = makeEncoder(video, *format);
    require(avcodec_parameters_from_context(stream->codecpar, encoder.get()), "parameters");
    stream->time_base = encoder->time_base;
    stream->avg_frame_rate = encoder->framerate;
    stream->sample_aspect_ratio = encoder->sample_aspect_ratio;
    setDisplayMatrix(stream, video);
    if (video.isCover)
        stream->disposition = AV_DISPOSITION_ATTACHED_PIC;

    require(avio_open(&format->pb, name.constData(), AVIO_FLAG_WRITE), "file");
    require(avformat_write_header(format, nullptr), "header");
    const int extraFlags = video.isEveryFrameCalledKey ? AV_PKT_FLAG_KEY : 0;
    for (int i = 0; i < video.frameCount; ++i) {
        const QImage picture = video.picture ? video.picture(i) : plainPicture(video.size, Qt::black);
        writePackets(encoder.get(), frameFromPicture(picture, video, i).get(), format, extraFlags);
    }
    writePackets(encoder.get(), nullptr, format, extraFlags);
    require(av_write_trailer(format), "trailer");
}

} // namespace

void writeTestVideo(const QString &path, const TestVideo &video)
{
    av_log_set_level(AV_LOG_QUIET);
    try {
        write(path, video);
    } catch (const std::runtime_error &error) {
        ADD_FAILURE() << "no test video " << path.toStdString() << ": " << error.what();
    }
}

QImage plainPicture(QSize size, QColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

QImage quarteredPicture(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    const QSize half = size / 2;
    painter.fillRect(QRect({0, 0}, half), Qt::red);
    painter.fillRect(QRect({half.width(), 0}, half), Qt::green);
    painter.fillRect(QRect({0, half.height()}, half), Qt::blue);
    painter.fillRect(QRect({half.width(), half.height()}, half), Qt::white);
    return picture;
}

} // namespace Qorvane
