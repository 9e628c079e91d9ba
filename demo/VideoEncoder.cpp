// SPDX-License-Identifier: MIT
#include "demo/VideoEncoder.h"

#include <cerrno>
#include <cstring>

extern "C" {
#include <libavutil/opt.h>
}

#include "service/NalUnit.h"

namespace ZorvaneDemo {

namespace {

// What stands in the strip while encoding: far from any scene's colours, so that neither
// motion search nor deblocking draws on lines that the viewer will see replaced.
constexpr std::uint8_t placeholder[3] = {16, 240, 240};

/// The constant rate factor; large pictures bear a coarser one.
const char *rateFactor(PictureSize size)
{
    constexpr int largeWidth = 1000;
    return size.width > largeWidth ? "26" : "25";
}

} // namespace

VideoEncoder::VideoEncoder(PictureSize pictureSize, int framesPerSecond, int bitsPerSecond)
    : size(pictureSize), withStrip(bitsPerSecond == 0)
{
    // The strip ends where a macroblock does, so what is too much is cut off above.
    codedHeight =
        withStrip ? (size.height + macroblock - 1) / macroblock * macroblock : size.height;
    cropTop = codedHeight - size.height;
    if (open(framesPerSecond, bitsPerSecond))
        paintFixedLines();
}

bool VideoEncoder::fail(const std::string &what)
{
    if (failure.empty())
        failure = what;
    return false;
}

bool VideoEncoder::open(int framesPerSecond, int bitsPerSecond)
{
    const AVCodec *encoder = avcodec_find_encoder_by_name("libx264");
    if (!encoder)
        return fail("FFmpeg has no libx264 encoder");
    codec.reset(avcodec_alloc_context3(encoder));
    output.reset(av_packet_alloc());
    frame.reset(av_frame_alloc());

    if (withStrip)
        layOutStrip();
    writer.header.width = static_cast<std::uint32_t>(size.width);
    writer.header.height = static_cast<std::uint32_t>(size.height);

    codec->width = size.width;
    codec->height = codedHeight;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->color_range = AVCOL_RANGE_MPEG;
    codec->colorspace = AVCOL_SPC_SMPTE170M;
    codec->color_primaries = AVCOL_PRI_SMPTE170M;
    codec->color_trc = AVCOL_TRC_SMPTE170M;
    codec->time_base = {1, framesPerSecond};
    codec->framerate = {framesPerSecond, 1};
    codec->gop_size = framesPerSecond;
    codec->max_b_frames = 0;
    codec->thread_count = 1;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    std::string parameters =
        "scenecut=0:mbtree=0:rc-lookahead=0:min-keyint=" + std::to_string(framesPerSecond);
    if (withStrip) {
        const StripLayout &strip = writer.header.strip;
        parameters += ":cabac=0:8x8dct=0:ref=1:weightp=0:slice-max-mbs=" +
                      std::to_string(strip.firstRow * strip.widthMbs) + ":crop-rect=0," +
                      std::to_string(cropTop) + ",0,0";
        av_opt_set(codec->priv_data, "preset", "superfast", 0);
        av_opt_set(codec->priv_data, "crf", rateFactor(size), 0);
    } else {
        codec->bit_rate = bitsPerSecond;
        codec->rc_max_rate = bitsPerSecond;
        codec->rc_buffer_size = bitsPerSecond;
        av_opt_set(codec->priv_data, "preset", "medium", 0);
    }
    av_opt_set(codec->priv_data, "x264-params", parameters.c_str(), 0);
    if (avcodec_open2(codec.get(), encoder, nullptr) < 0)
        return fail("cannot open the H.264 encoder");

    for (const NalUnit &unit :
         unitsAfterStartCodes(codec->extradata, static_cast<std::size_t>(codec->extradata_size))) {
        if (unit.type() == NalUnit::SequenceSet)
            writer.sps.assign(unit.data, unit.data + unit.size);
        else if (unit.type() == NalUnit::PictureSet)
            writer.pps.assign(unit.data, unit.data + unit.size);
    }
    if (withStrip && !writer.header.strip.readParameterSets(writer.sps, writer.pps))
        return fail("the H.264 encoder made another kind of stream than asked for");

    frame->format = codec->pix_fmt;
    frame->width = codec->width;
    frame->height = codec->height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return fail("no memory for a picture");
    return true;
}

void VideoEncoder::layOutStrip()
{
    StripLayout &strip = writer.header.strip;
    strip.widthMbs = static_cast<std::uint16_t>(size.width / macroblock);
    const int cellHeight = static_cast<int>(size.height / StripCode::heightDivisor);
    strip.rows = static_cast<std::uint16_t>((cellHeight + macroblock - 1) / macroblock);
    strip.firstRow = static_cast<std::uint16_t>(codedHeight / macroblock - strip.rows);
    strip.cellTop = static_cast<std::uint16_t>(strip.rows * macroblock - cellHeight);
}

void VideoEncoder::paintFixedLines()
{
    for (int plane = 0; plane < 3; ++plane) {
        const int lines = plane == 0 ? codedHeight : codedHeight / 2;
        for (int y = 0; y < lines; ++y)
            std::memset(codedLine(plane, y), placeholder[plane],
                        static_cast<std::size_t>(lineBytes(plane)));
    }
}

int VideoEncoder::lineBytes(int plane) const
{
    return plane == 0 ? size.width : size.width / 2;
}

std::uint8_t *VideoEncoder::line(int plane, int y)
{
    const int top = plane == 0 ? cropTop : cropTop / 2;
    return codedLine(plane, y + top);
}

std::uint8_t *VideoEncoder::codedLine(int plane, int y)
{
    return frame->data[plane] + std::ptrdiff_t(y) * frame->linesize[plane];
}

int VideoEncoder::sceneHeight() const
{
    return size.height - writer.header.strip.rows * macroblock;
}

bool VideoEncoder::encode()
{
    if (!failure.empty())
        return false;
    frame->pts = frameNumber++;
    if (avcodec_send_frame(codec.get(), frame.get()) < 0)
        return fail("the H.264 encoder refused a picture");
    // The encoder has its own copy of a picture once it was sent without look-ahead.
    return av_frame_make_writable(frame.get()) >= 0 && receive();
}

bool VideoEncoder::receive()
{
    for (;;) {
        const int result = avcodec_receive_packet(codec.get(), output.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return true;
        if (result < 0)
            return fail("the H.264 encoder failed");
        const bool taken = take(output.get());
        av_packet_unref(output.get());
        if (!taken)
            return false;
    }
}

bool VideoEncoder::take(const AVPacket *packet)
{
    Bytes picture;
    StripPicture strip;
    int slices = 0;
    for (const NalUnit &unit :
         unitsAfterStartCodes(packet->data, static_cast<std::size_t>(packet->size))) {
        if (unit.type() != NalUnit::Slice && unit.type() != NalUnit::IdrSlice)
            continue;
        if (slices++ == 0) {
            if (withStrip)
                strip = StripPicture::fromSlice(writer.header.strip, unit.data, unit.size);
            appendWithLength(unit, &picture);
        }
    }
    if (slices != (withStrip ? 2 : 1))
        return fail("the H.264 encoder did not keep the strip in a slice of its own");
    writer.add(picture, (packet->flags & AV_PKT_FLAG_KEY) != 0, strip);
    return true;
}

bool VideoEncoder::finish(const std::string &fileName)
{
    if (!failure.empty())
        return false;
    avcodec_send_frame(codec.get(), nullptr);
    if (!receive())
        return false;
    if (static_cast<std::int64_t>(writer.packetCount()) != frameNumber)
        return fail("the H.264 encoder lost pictures");
    if (!writer.save(fileName))
        return fail("cannot write " + fileName + ": " + std::strerror(errno));
    return true;
}

} // namespace ZorvaneDemo
