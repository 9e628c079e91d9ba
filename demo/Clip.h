// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "demo/BitStream.h"
#include "demo/ServiceWords.h"
#include "demo/StripSlice.h"
#include "service/LocalTime.h"
#include "service/MediaFormat.h"

namespace ZorvaneDemo {

/// One encoded minute as it lies in a file, mapped into memory and shared by all streams.
/// A video clip has H.264 pictures without their strip slice, if they have one, each second
/// beginning with a key frame; a sound clip has MP3 frames of equal length.
class Clip
{
public:
    struct alignas(8) Header {
        char magic[8];
        std::uint32_t width;
        std::uint32_t height;
        std::uint32_t packetCount;
        std::uint32_t spsSize;
        std::uint32_t ppsSize;
        std::uint32_t reserved;
        StripLayout strip;
    };
    struct Packet {
        std::uint64_t offset; ///< from the begin of the file
        std::uint32_t size;
        std::uint32_t keyFrame;
        StripPicture picture;
    };

    /// Null when the file is missing, damaged or of another version.
    static std::shared_ptr<const Clip> open(const std::string &fileName);
    ~Clip();

    int packetCount() const { return static_cast<int>(header->packetCount); }
    /// Begin of packet `index` within the minute.
    int packetMs(int index) const { return static_cast<int>(minuteMs * index / packetCount()); }
    bool isKeyFrame(int index) const { return packets[index].keyFrame != 0; }
    /// Of pictures, with the sound of the sound clip.
    MediaFormat format() const;
    const std::uint8_t *packetData(int index) const { return base + packets[index].offset; }
    std::size_t packetSize(int index) const { return packets[index].size; }
    /// Appends the picture of `index` with the strip, if any, of camera `number`, each unit after
    /// its four-byte length.
    void appendPicture(int index, int number, Bytes *out) const;

private:
    Clip() = default;

    const std::uint8_t *base = nullptr;
    std::size_t length = 0;
    const Header *header = nullptr;
    const Packet *packets = nullptr;
};

/// Gathers the packets of one clip and writes its file.
class ClipWriter
{
public:
    Clip::Header header{};
    Bytes sps;
    Bytes pps;

    void add(const Bytes &data, bool keyFrame, const StripPicture &picture);
    std::size_t packetCount() const { return packets.size(); }
    /// Writes beside `fileName` first, then renames. False, with errno, on failure.
    bool save(const std::string &fileName);

private:
    std::vector<Clip::Packet> packets;
    Bytes content;
};

} // namespace ZorvaneDemo
