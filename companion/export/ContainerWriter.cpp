// SPDX-License-Identifier: MIT
#include "companion/export/ContainerWriter.h"

#include <algorithm>

#include "companion/export/TargetFile.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr int bufferBytes = 256 * 1024;
/// Sound follows sound without a break while it is at most so many frames off.
constexpr int64_t soundSlack = 2;

int64_t soundLength(AVCodecParameters &parameters, const AVPacket &packet)
{
    const int samples = av_get_audio_frame_duration2(&parameters, packet.size);
    return std::max(samples, 1);
}

} // namespace

ContainerWriter::ContainerWriter(TargetFile &targetFile, const std::string &container)
    : file(targetFile), format(av_guess_format(container.c_str(), nullptr, nullptr))
{
}

bool ContainerWriter::takes(AVCodecID codec) const
{
    return format && avformat_query_codec(format, codec, FF_COMPLIANCE_NORMAL) == 1;
}

bool ContainerWriter::begin(const AVCodecParameters &videoParameters,
                            const AVCodecParameters *soundParameters, AVRational slot)
{
    sound = nullptr;
    if (!file.clear() || !openFile() || !setUpFilter(videoParameters))
        return false;
    video = addStream(annexB ? *annexB->par_out : videoParameters,
                      format->flags & AVFMT_VARIABLE_FPS ? millisecondBase : slot);
    if (!video)
        return false;
    if (soundParameters) {
        sound = addStream(*soundParameters, {1, std::max(soundParameters->sample_rate, 1)});
        if (!sound)
            return false;
    }
    if (videoParameters.codec_id == AV_CODEC_ID_H264)
        parameterSets.set(videoParameters.extradata,
                          static_cast<size_t>(videoParameters.extradata_size));
    return avformat_write_header(output.get(), nullptr) >= 0;
}

bool ContainerWriter::openFile()
{
    AVFormatContext *context = nullptr;
    avformat_alloc_output_context2(&context, format, nullptr, nullptr);
    output.reset(context);
    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferBytes));
    if (!context || !buffer) {
        av_free(buffer);
        return false;
    }
    context->pb = avio_alloc_context(buffer, bufferBytes, 1, this, nullptr,
                                     &ContainerWriter::writeBytes, &ContainerWriter::seekBytes);
    context->flags |= AVFMT_FLAG_CUSTOM_IO;
    return context->pb != nullptr;
}

AVStream *ContainerWriter::addStream(const AVCodecParameters &parameters, AVRational timeBase)
{
    AVStream *stream = avformat_new_stream(output.get(), nullptr);
    if (!stream || avcodec_parameters_copy(stream->codecpar, &parameters) < 0)
        return nullptr;
    stream->codecpar->codec_tag = 0; // the container has its own
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    stream->time_base = timeBase;
    return stream;
}

bool ContainerWriter::setUpFilter(const AVCodecParameters &parameters)
{
    annexB.reset();
    if (parameters.codec_id != AV_CODEC_ID_H264 || (format->flags & AVFMT_GLOBALHEADER))
        return true;
    AVBSFContext *context = nullptr;
    const AVBitStreamFilter *converter = av_bsf_get_by_name("h264_mp4toannexb");
    if (!converter || av_bsf_alloc(converter, &context) < 0)
        return false;
    annexB.reset(context);
    context->time_base_in = millisecondBase;
    return avcodec_parameters_copy(context->par_in, &parameters) >= 0 && av_bsf_init(context) >= 0;
}

/// The converter would give all key frames the sets of the first record.
bool ContainerWriter::filter(AVPacket &packet)
{
    if (!parameterSets.apply(packet))
        return false;
    if (!annexB)
        return true;
    return av_bsf_send_packet(annexB.get(), &packet) >= 0 &&
           av_bsf_receive_packet(annexB.get(), &packet) >= 0;
}

bool ContainerWriter::writeVideo(PacketHandle packet)
{
    if (!filter(*packet))
        return false;
    av_packet_rescale_ts(packet.get(), millisecondBase, video->time_base);
    const int64_t delay = std::max<int64_t>(packet->pts - packet->dts, 0);
    if (lastVideo != AV_NOPTS_VALUE)
        packet->dts = std::max(packet->dts, lastVideo + 1);
    packet->pts = packet->dts + delay;
    lastVideo = packet->dts;
    return write(*packet, *video);
}

bool ContainerWriter::writeSound(PacketHandle packet)
{
    if (!sound)
        return true;
    const AVRational sampleBase = {1, sound->codecpar->sample_rate};
    const int64_t length = soundLength(*sound->codecpar, *packet);
    int64_t time = av_rescale_q(packet->dts, millisecondBase, sampleBase);
    if (nextSound != AV_NOPTS_VALUE) {
        if (time < nextSound - soundSlack * length)
            return true;
        if (time <= nextSound + soundSlack * length)
            time = nextSound;
    }
    nextSound = time + length;
    packet->pts = packet->dts = av_rescale_q(time, sampleBase, sound->time_base);
    packet->duration = av_rescale_q(length, sampleBase, sound->time_base);
    return write(*packet, *sound);
}

bool ContainerWriter::write(AVPacket &packet, const AVStream &stream)
{
    packet.stream_index = stream.index;
    packet.pos = -1;
    return av_interleaved_write_frame(output.get(), &packet) >= 0 && output->pb->error >= 0;
}

bool ContainerWriter::end()
{
    if (av_write_trailer(output.get()) < 0)
        return false;
    avio_flush(output->pb);
    return output->pb->error >= 0;
}

int ContainerWriter::writeBytes(void *writer, uint8_t *bytes, int count)
{
    auto *self = static_cast<ContainerWriter *>(writer);
    return self->file.write(bytes, static_cast<size_t>(count)) ? count : AVERROR(EIO);
}

int64_t ContainerWriter::seekBytes(void *writer, int64_t offset, int whence)
{
    auto *self = static_cast<ContainerWriter *>(writer);
    if (whence & AVSEEK_SIZE)
        return self->file.size();
    return self->file.seek(offset, whence & ~AVSEEK_FORCE);
}

} // namespace Companion
} // namespace ZorvaneClient
