// SPDX-License-Identifier: MIT
#include "server/PacketMaker.h"

#include "server/SegmentHead.h"

namespace ZorvaneServer {

namespace {

/// The size of the pictures, as FFmpeg reads it out of the parameter sets.
void readSize(const H264::ParameterSets &sets, const H264::Units &keyPicture, StreamFormat *format)
{
    const ParserHandle parser(av_parser_init(AV_CODEC_ID_H264));
    const CodecHandle codec(avcodec_alloc_context3(nullptr));
    if (!parser || !codec)
        return;
    codec->codec_id = AV_CODEC_ID_H264;
    parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    Bytes picture = sets.withStartCodes();
    for (const H264::Unit &unit : keyPicture) {
        picture.insert(picture.end(), {0, 0, 1});
        picture.insert(picture.end(), unit.data, unit.data + unit.size);
    }
    const int size = static_cast<int>(picture.size());
    picture.resize(picture.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    std::uint8_t *out = nullptr;
    int outSize = 0;
    av_parser_parse2(parser.get(), codec.get(), &out, &outSize, picture.data(), size,
                     AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    if (parser->width > 0 && parser->height > 0) {
        format->width = parser->width;
        format->height = parser->height;
    }
}

} // namespace

std::string PacketMaker::objection(const AVStream &video)
{
    const AVCodecID codec = video.codecpar->codec_id;
    if (codec == AV_CODEC_ID_H264)
        return {};
    std::string name = avcodec_get_name(codec);
    if (codec == AV_CODEC_ID_HEVC)
        name = "H.265 (HEVC)";
    if (codec == AV_CODEC_ID_MJPEG)
        name = "MJPEG";
    return "it sends " + name + ", and only H.264 can be recorded. Choose H.264 in its settings";
}

SoundCodec PacketMaker::soundCodecOf(const AVStream &sound)
{
    const AVCodecParameters &parameters = *sound.codecpar;
    if (parameters.sample_rate <= 0 || parameters.ch_layout.nb_channels <= 0 ||
        parameters.extradata_size > int(SegmentHead::largestSetup))
        return SoundCodec::None;
    switch (parameters.codec_id) {
    case AV_CODEC_ID_AAC:
        return parameters.extradata_size > 0 ? SoundCodec::Aac : SoundCodec::None;
    case AV_CODEC_ID_MP3:
        return SoundCodec::Mp3;
    case AV_CODEC_ID_PCM_ALAW:
        return SoundCodec::ALaw;
    case AV_CODEC_ID_PCM_MULAW:
        return SoundCodec::MuLaw;
    default:
        return SoundCodec::None;
    }
}

void PacketMaker::takeSetup(const std::uint8_t *setup, std::size_t size)
{
    sets = H264::ParameterSets::of(setup, size);
    lengthBytes = H264::lengthBytesOf(setup, size);
    setsChanged = true;
    hasSetup = true;
}

H264::Units PacketMaker::unitsOf(const AVPacket &packet, const AVStream &video)
{
    const auto size = static_cast<std::size_t>(packet.size);
    std::size_t newSize = 0;
    const std::uint8_t *fresh =
        av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, &newSize);
    if (fresh)
        takeSetup(fresh, newSize);
    else if (!hasSetup && video.codecpar->extradata_size > 0)
        takeSetup(video.codecpar->extradata,
                  static_cast<std::size_t>(video.codecpar->extradata_size));
    return lengthBytes == 0 ? ZorvaneService::unitsAfterStartCodes(packet.data, size)
                            : ZorvaneService::unitsAfterLengths(packet.data, size, lengthBytes);
}

void PacketMaker::updateFormat(const H264::Units &keyPicture, const AVStream &video,
                               const AVStream *sound)
{
    StreamFormat format;
    format.videoSetup = sets.record();
    if (format.videoSetup.size() > SegmentHead::largestSetup)
        return;
    format.width = current && !setsChanged ? current->width : video.codecpar->width;
    format.height = current && !setsChanged ? current->height : video.codecpar->height;
    if (setsChanged)
        readSize(sets, keyPicture, &format);
    setsChanged = false;
    format.sound = sound ? soundCodecOf(*sound) : SoundCodec::None;
    if (format.sound != SoundCodec::None) {
        const AVCodecParameters &parameters = *sound->codecpar;
        format.soundRate = parameters.sample_rate;
        format.soundChannels = parameters.ch_layout.nb_channels;
        if (format.sound == SoundCodec::Aac)
            format.soundSetup.assign(parameters.extradata,
                                     parameters.extradata + parameters.extradata_size);
    }
    if (!current || *current != format)
        current = std::make_shared<StreamFormat>(std::move(format));
}

std::optional<MediaPacket> PacketMaker::picture(const AVPacket &packet, const AVStream &video,
                                                const AVStream *sound)
{
    const H264::Units units = unitsOf(packet, video);
    setsChanged |= sets.take(units);
    MediaPacket picture;
    picture.isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0 || H264::isKey(units);
    if (picture.isKey && sets.isComplete())
        updateFormat(units, video, sound);
    picture.data = H264::pictureOf(units);
    if (!current || picture.data.empty())
        return {};
    picture.format = current;
    return picture;
}

std::optional<MediaPacket> PacketMaker::sound(const AVPacket &packet) const
{
    if (!current || current->sound == SoundCodec::None || packet.size <= 0)
        return {};
    MediaPacket sound;
    sound.track = Track::Sound;
    sound.isKey = true;
    sound.format = current;
    sound.data.assign(packet.data, packet.data + packet.size);
    return sound;
}

} // namespace ZorvaneServer
