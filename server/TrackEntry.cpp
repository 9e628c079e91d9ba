// SPDX-License-Identifier: MIT
#include "server/TrackEntry.h"

#include <algorithm>
#include <string>

#include "server/Ebml.h"
#include "server/MatroskaIds.h"
#include "server/MediaPacket.h"

namespace ZorvaneServer {

using namespace Ebml;

namespace {

constexpr std::uint64_t videoType = 1;
constexpr std::uint64_t soundType = 2;
constexpr char videoCodec[] = "V_MPEG4/ISO/AVC";
constexpr char aacCodec[] = "A_AAC";
constexpr char mp3Codec[] = "A_MPEG/L3";
// Matroska has no name of its own for G.711: the setup is a WAVEFORMATEX that tells which.
constexpr char waveCodec[] = "A_MS/ACM";
constexpr std::uint16_t aLawTag = 6;
constexpr std::uint16_t muLawTag = 7;
constexpr std::uint64_t g711Bits = 8;

void appendLittleEndian(std::uint32_t value, std::size_t bytes, Bytes *out)
{
    for (std::size_t i = 0; i < bytes; ++i)
        out->push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

bool isG711(SoundCodec codec)
{
    return codec == SoundCodec::ALaw || codec == SoundCodec::MuLaw;
}

Bytes waveFormat(const StreamFormat &format)
{
    const auto channels = static_cast<std::uint32_t>(format.soundChannels);
    const auto rate = static_cast<std::uint32_t>(format.soundRate);
    Bytes wave;
    appendLittleEndian(format.sound == SoundCodec::ALaw ? aLawTag : muLawTag, 2, &wave);
    appendLittleEndian(channels, 2, &wave);
    appendLittleEndian(rate, 4, &wave);
    appendLittleEndian(rate * channels, 4, &wave);
    appendLittleEndian(channels, 2, &wave);
    appendLittleEndian(g711Bits, 2, &wave);
    appendLittleEndian(0, 2, &wave);
    return wave;
}

void appendEntry(Track track, std::uint64_t type, const char *codec, const Bytes &setup,
                 std::uint32_t detailsId, const Bytes &details, Bytes *out)
{
    Bytes entry;
    appendUnsigned(MatroskaId::TrackNumber, std::uint64_t(track), &entry);
    appendUnsigned(MatroskaId::TrackUid, std::uint64_t(track), &entry);
    appendUnsigned(MatroskaId::TrackType, type, &entry);
    appendUnsigned(MatroskaId::FlagLacing, 0, &entry);
    appendText(MatroskaId::Language, "und", &entry);
    appendText(MatroskaId::CodecId, codec, &entry);
    if (!setup.empty())
        appendElement(MatroskaId::CodecPrivate, setup, &entry);
    appendElement(detailsId, details, &entry);
    appendElement(MatroskaId::TrackEntry, entry, out);
}

SoundCodec soundCodec(const std::string &codec, const Bytes &setup)
{
    if (codec == aacCodec)
        return SoundCodec::Aac;
    if (codec == mp3Codec)
        return SoundCodec::Mp3;
    if (codec == waveCodec && setup.size() > 1 && setup[0] == aLawTag)
        return SoundCodec::ALaw;
    if (codec == waveCodec && setup.size() > 1 && setup[0] == muLawTag)
        return SoundCodec::MuLaw;
    return SoundCodec::None;
}

} // namespace

Bytes trackEntries(const StreamFormat &format)
{
    Bytes size;
    appendUnsigned(MatroskaId::PixelWidth, static_cast<std::uint64_t>(format.width), &size);
    appendUnsigned(MatroskaId::PixelHeight, static_cast<std::uint64_t>(format.height), &size);
    Bytes entries;
    appendEntry(Track::Video, videoType, videoCodec, format.videoSetup, MatroskaId::Video, size,
                &entries);
    if (format.sound == SoundCodec::None)
        return entries;
    Bytes details;
    appendNumber(MatroskaId::SamplingFrequency, format.soundRate, &details);
    appendUnsigned(MatroskaId::Channels, static_cast<std::uint64_t>(format.soundChannels),
                   &details);
    const bool isWave = isG711(format.sound);
    if (isWave)
        appendUnsigned(MatroskaId::BitDepth, g711Bits, &details);
    const char *codec = format.sound == SoundCodec::Aac ? aacCodec : mp3Codec;
    appendEntry(Track::Sound, soundType, isWave ? waveCodec : codec,
                isWave ? waveFormat(format) : format.soundSetup, MatroskaId::Audio, details,
                &entries);
    return entries;
}

bool readTrackEntry(const std::uint8_t *data, std::size_t size, StreamFormat *format)
{
    std::uint64_t track = 0;
    std::string codec;
    Bytes setup;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t channels = 0;
    double rate = 0;
    while (const auto header = readHeader(data, size)) {
        data += header->bytes;
        size -= header->bytes;
        // The details lie inside the entry: their elements are read as if they were its own.
        const bool isDetails = header->id == MatroskaId::Video || header->id == MatroskaId::Audio;
        const std::size_t content = isDetails ? 0 : std::min<std::uint64_t>(header->size, size);
        if (header->id == MatroskaId::TrackNumber)
            track = readUnsigned(data, content);
        else if (header->id == MatroskaId::CodecId)
            codec.assign(data, data + content);
        else if (header->id == MatroskaId::CodecPrivate)
            setup.assign(data, data + content);
        else if (header->id == MatroskaId::PixelWidth)
            width = readUnsigned(data, content);
        else if (header->id == MatroskaId::PixelHeight)
            height = readUnsigned(data, content);
        else if (header->id == MatroskaId::Channels)
            channels = readUnsigned(data, content);
        else if (header->id == MatroskaId::SamplingFrequency)
            rate = readNumber(data, content);
        data += content;
        size -= content;
    }
    constexpr std::uint64_t largest = 1 << 16;
    constexpr double largestRate = 1e6;
    if (track == std::uint64_t(Track::Video) && codec == videoCodec) {
        format->width = static_cast<int>(std::min(width, largest));
        format->height = static_cast<int>(std::min(height, largest));
        format->videoSetup = setup;
        return true;
    }
    const SoundCodec sound = soundCodec(codec, setup);
    if (track != std::uint64_t(Track::Sound) || sound == SoundCodec::None ||
        !(rate > 0 && rate < largestRate))
        return false;
    format->sound = sound;
    format->soundRate = static_cast<int>(rate);
    format->soundChannels = static_cast<int>(std::min(channels, largest));
    format->soundSetup = isG711(sound) ? Bytes() : setup;
    return true;
}

} // namespace ZorvaneServer
