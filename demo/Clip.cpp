// SPDX-License-Identifier: MIT
#include "demo/Clip.h"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZorvaneDemo {

namespace {

// The last digit goes up when the form of the file or what the scenes show changes.
constexpr char magic[8] = {'Z', 'D', 'C', 'L', 'I', 'P', '0', '1'};

} // namespace

std::shared_ptr<const Clip> Clip::open(const std::string &fileName)
{
    const int file = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return nullptr;
    struct stat info {
    };
    const bool known = fstat(file, &info) == 0 && info.st_size > static_cast<off_t>(sizeof(Header));
    const std::size_t length = known ? static_cast<std::size_t>(info.st_size) : 0;
    void *memory = known ? mmap(nullptr, length, PROT_READ, MAP_SHARED, file, 0) : MAP_FAILED;
    close(file);
    if (memory == MAP_FAILED)
        return nullptr;

    std::shared_ptr<Clip> clip(new Clip);
    clip->base = static_cast<const std::uint8_t *>(memory);
    clip->length = length;
    clip->header = reinterpret_cast<const Header *>(clip->base);
    clip->packets = reinterpret_cast<const Packet *>(clip->base + sizeof(Header));
    const Header &header = *clip->header;
    if (std::memcmp(header.magic, magic, sizeof magic) != 0 || header.packetCount == 0)
        return nullptr;
    const std::size_t tables = sizeof(Header) + sizeof(Packet) * std::size_t(header.packetCount);
    if (length < tables + header.spsSize + header.ppsSize)
        return nullptr;
    const Packet &last = clip->packets[header.packetCount - 1];
    return last.offset + last.size == length ? clip : nullptr;
}

Clip::~Clip()
{
    if (base)
        munmap(const_cast<std::uint8_t *>(base), length);
}

MediaFormat Clip::format() const
{
    MediaFormat result;
    result.size = {static_cast<int>(header->width), static_cast<int>(header->height)};
    result.picturesPerSecond = static_cast<double>(packetCount()) / secondsPerMinute;
    const std::uint8_t *sps = base + sizeof(Header) + sizeof(Packet) * header->packetCount;
    const std::uint8_t *pps = sps + header->spsSize;
    result.sps.assign(sps, pps);
    result.pps.assign(pps, pps + header->ppsSize);
    result.sound = MediaFormat::Sound::Mp3;
    return result;
}

void Clip::appendPicture(int index, int number, Bytes *out) const
{
    out->insert(out->end(), packetData(index), packetData(index) + packetSize(index));
    if (header->strip.rows == 0)
        return;
    StripCode code;
    code.camera = number;
    code.milliseconds = packetMs(index);
    appendStripSlice(header->strip, packets[index].picture, code, out);
}

void ClipWriter::add(const Bytes &data, bool keyFrame, const StripPicture &picture)
{
    Clip::Packet packet{};
    packet.offset = content.size();
    packet.size = static_cast<std::uint32_t>(data.size());
    packet.keyFrame = keyFrame ? 1 : 0;
    packet.picture = picture;
    packets.push_back(packet);
    content.insert(content.end(), data.begin(), data.end());
}

bool ClipWriter::save(const std::string &fileName)
{
    std::memcpy(header.magic, magic, sizeof magic);
    header.packetCount = static_cast<std::uint32_t>(packets.size());
    header.spsSize = static_cast<std::uint32_t>(sps.size());
    header.ppsSize = static_cast<std::uint32_t>(pps.size());
    const std::uint64_t start =
        sizeof header + sizeof(Clip::Packet) * packets.size() + sps.size() + pps.size();
    for (Clip::Packet &packet : packets)
        packet.offset += start;

    const std::string temporary = fileName + "." + std::to_string(getpid());
    FILE *file = std::fopen(temporary.c_str(), "wbe");
    if (!file)
        return false;
    const auto write = [file](const void *data, std::size_t size) {
        return size == 0 || std::fwrite(data, size, 1, file) == 1;
    };
    bool good = write(&header, sizeof header) &&
                write(packets.data(), sizeof(Clip::Packet) * packets.size()) &&
                write(sps.data(), sps.size()) && write(pps.data(), pps.size()) &&
                write(content.data(), content.size());
    good = std::fclose(file) == 0 && good;
    good = good && std::rename(temporary.c_str(), fileName.c_str()) == 0;
    if (!good)
        std::remove(temporary.c_str());
    return good;
}

} // namespace ZorvaneDemo
