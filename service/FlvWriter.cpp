// SPDX-License-Identifier: MIT
#include "service/FlvWriter.h"

#include <cstring>
#include <iterator>
#include <string>

namespace ZorvaneService {

namespace {

constexpr std::uint8_t soundTag = 8;
constexpr std::uint8_t videoTag = 9;
constexpr std::uint8_t scriptTag = 18;
constexpr std::uint8_t keyFrameAvc = 0x17;
constexpr std::uint8_t interFrameAvc = 0x27;
// 16 bit, mono; 48 kHz goes under the number of 44.1 kHz.
constexpr std::uint8_t mp3Flags = 0x2e;
// Always the same: the configuration tells the truth.
constexpr std::uint8_t aacFlags = 0xaf;
constexpr std::uint8_t sequenceHeader = 0;
constexpr std::uint8_t codedFrame = 1;
constexpr std::uint8_t hasPictures = 1;
constexpr std::uint8_t hasSound = 4;
constexpr std::size_t tagHeaderBytes = 11;
/// The unit's header, then profile, constraints and level, which are repeated.
constexpr std::size_t leastSpsBytes = 4;

// What precedes a value in the metadata, and what ends them.
constexpr std::uint8_t amfNumber = 0;
constexpr std::uint8_t amfText = 2;
constexpr std::uint8_t amfArray = 8;
constexpr std::uint8_t amfEnd = 9;
constexpr double avcCodec = 7;
constexpr double mp3Codec = 2;
constexpr double aacCodec = 10;

void putNumber(std::uint64_t value, int bytes, Bytes *out)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out->push_back(static_cast<std::uint8_t>(value >> shift));
}

/// A tag's header; returns where the tag begins.
std::size_t beginTag(std::uint8_t type, std::uint32_t timeMs, Bytes *out)
{
    const std::size_t begin = out->size();
    out->push_back(type);
    putNumber(0, 3, out);
    putNumber(timeMs & 0xffffffu, 3, out);
    out->push_back(static_cast<std::uint8_t>(timeMs >> 24));
    putNumber(0, 3, out);
    return begin;
}

/// Sets the tag's length and appends the size that follows every tag.
void endTag(std::size_t begin, Bytes *out)
{
    const std::size_t size = out->size() - begin - tagHeaderBytes;
    (*out)[begin + 1] = static_cast<std::uint8_t>(size >> 16);
    (*out)[begin + 2] = static_cast<std::uint8_t>(size >> 8);
    (*out)[begin + 3] = static_cast<std::uint8_t>(size);
    putNumber(size + tagHeaderBytes, 4, out);
}

void putName(const std::string &name, Bytes *out)
{
    putNumber(name.size(), 2, out);
    out->insert(out->end(), name.begin(), name.end());
}

void putDouble(const std::string &name, double value, Bytes *out)
{
    putName(name, out);
    out->push_back(amfNumber);
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    putNumber(bits, 8, out);
}

void appendMetadata(const MediaFormat &format, Bytes *out)
{
    const bool withSound = format.sound != MediaFormat::Sound::None;
    const std::size_t begin = beginTag(scriptTag, 0, out);
    out->push_back(amfText);
    putName("onMetaData", out);
    out->push_back(amfArray);
    putNumber(withSound ? 5 : 4, 4, out); // as many as follow
    putDouble("width", format.size.width, out);
    putDouble("height", format.size.height, out);
    putDouble("framerate", format.picturesPerSecond, out);
    putDouble("videocodecid", avcCodec, out);
    if (withSound)
        putDouble("audiocodecid", format.sound == MediaFormat::Sound::Aac ? aacCodec : mp3Codec,
                  out);
    putNumber(amfEnd, 3, out); // after an empty name
    endTag(begin, out);
}

} // namespace

void appendFlvHeader(const MediaFormat &format, Bytes *out)
{
    const std::uint8_t flags =
        hasPictures | (format.sound == MediaFormat::Sound::None ? 0 : hasSound);
    const std::uint8_t header[] = {'F', 'L', 'V', 1, flags, 0, 0, 0, 9, 0, 0, 0, 0};
    out->insert(out->end(), std::begin(header), std::end(header));
    appendMetadata(format, out);
}

void appendFlvFormat(const MediaFormat &format, std::uint32_t timeMs, Bytes *out)
{
    if (format.sps.size() < leastSpsBytes)
        return;
    const std::size_t begin = beginTag(videoTag, timeMs, out);
    out->push_back(keyFrameAvc);
    out->push_back(sequenceHeader);
    putNumber(0, 3, out);
    out->push_back(1);
    out->insert(out->end(), format.sps.begin() + 1, format.sps.begin() + 4);
    out->push_back(0xff); // four-byte lengths
    out->push_back(0xe1); // one sequence parameter set
    putNumber(format.sps.size(), 2, out);
    out->insert(out->end(), format.sps.begin(), format.sps.end());
    out->push_back(1);
    putNumber(format.pps.size(), 2, out);
    out->insert(out->end(), format.pps.begin(), format.pps.end());
    endTag(begin, out);
    if (format.sound != MediaFormat::Sound::Aac)
        return;
    const std::size_t soundBegin = beginTag(soundTag, timeMs, out);
    out->push_back(aacFlags);
    out->push_back(sequenceHeader);
    out->insert(out->end(), format.soundConfiguration.begin(), format.soundConfiguration.end());
    endTag(soundBegin, out);
}

void appendFlvPicture(std::uint32_t timeMs, std::uint32_t laterMs, bool keyFrame,
                      const Bytes &picture, Bytes *out)
{
    const std::size_t begin = beginTag(videoTag, timeMs, out);
    out->push_back(keyFrame ? keyFrameAvc : interFrameAvc);
    out->push_back(codedFrame);
    putNumber(laterMs, 3, out);
    out->insert(out->end(), picture.begin(), picture.end());
    endTag(begin, out);
}

void appendFlvSound(const MediaFormat &format, std::uint32_t timeMs, const Bytes &frame, Bytes *out)
{
    const std::size_t begin = beginTag(soundTag, timeMs, out);
    if (format.sound == MediaFormat::Sound::Aac) {
        out->push_back(aacFlags);
        out->push_back(codedFrame);
    } else {
        out->push_back(mp3Flags);
    }
    out->insert(out->end(), frame.begin(), frame.end());
    endTag(begin, out);
}

} // namespace ZorvaneService
