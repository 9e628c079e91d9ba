// SPDX-License-Identifier: MIT
#include "server/Ebml.h"

#include <algorithm>
#include <cstring>

namespace ZorvaneServer {
namespace Ebml {

namespace {

constexpr std::uint32_t voidId = 0xec;
constexpr std::size_t longestId = 4;

void appendBigEndian(std::uint64_t value, std::size_t bytes, Bytes *out)
{
    while (bytes-- > 0)
        out->push_back(static_cast<std::uint8_t>(value >> 8 * bytes));
}

/// How many bytes the number takes that begins so; 0 when it is none.
std::size_t lengthBy(std::uint8_t first)
{
    std::size_t length = 1;
    for (unsigned mark = 0x80; mark != 0; mark >>= 1, ++length) {
        if (first & mark)
            return length;
    }
    return 0;
}

} // namespace

void appendId(std::uint32_t id, Bytes *out)
{
    std::size_t bytes = 1;
    while (bytes < longestId && id >> 8 * bytes != 0)
        ++bytes;
    appendBigEndian(id, bytes, out);
}

void appendSize(std::uint64_t size, Bytes *out, std::size_t bytes)
{
    // All bits set mean that the size isn't known.
    for (std::size_t least = 1; bytes == 0; ++least) {
        if (size < (std::uint64_t(1) << 7 * least) - 1)
            bytes = least;
    }
    const std::uint64_t mark = std::uint64_t(1) << 7 * bytes;
    appendBigEndian(mark | (size & (mark - 1)), bytes, out);
}

void appendElement(std::uint32_t id, const Bytes &content, Bytes *out)
{
    appendId(id, out);
    appendSize(content.size(), out);
    out->insert(out->end(), content.begin(), content.end());
}

void appendUnsigned(std::uint32_t id, std::uint64_t value, Bytes *out)
{
    std::size_t bytes = 1;
    while (bytes < sizeof value && value >> 8 * bytes != 0)
        ++bytes;
    appendId(id, out);
    appendSize(bytes, out);
    appendBigEndian(value, bytes, out);
}

void appendNumber(std::uint32_t id, double value, Bytes *out)
{
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    appendId(id, out);
    appendSize(sizeof bits, out);
    appendBigEndian(bits, sizeof bits, out);
}

void appendText(std::uint32_t id, std::string_view text, Bytes *out)
{
    appendElement(id, Bytes(text.begin(), text.end()), out);
}

void appendVoid(std::size_t bytes, Bytes *out)
{
    const std::size_t end = out->size() + bytes;
    appendId(voidId, out);
    // The header of the larger form is as long as the smaller one with more content.
    const std::size_t sizeBytes = bytes < 1 + 2 * patchableSize ? 1 : patchableSize;
    appendSize(bytes - 1 - sizeBytes, out, sizeBytes);
    out->resize(end);
}

std::optional<Header> readHeader(const std::uint8_t *data, std::size_t size)
{
    const std::size_t idBytes = size > 0 ? lengthBy(data[0]) : 0;
    if (idBytes == 0 || idBytes > longestId || idBytes >= size)
        return {};
    const std::size_t sizeBytes = lengthBy(data[idBytes]);
    if (sizeBytes == 0 || idBytes + sizeBytes > size)
        return {};
    const std::uint64_t mark = std::uint64_t(1) << 7 * sizeBytes;
    const std::uint64_t value = readUnsigned(data + idBytes, sizeBytes) & (mark - 1);
    return Header{static_cast<std::uint32_t>(readUnsigned(data, idBytes)),
                  value == mark - 1 ? unknownSize : value, idBytes + sizeBytes};
}

std::uint64_t readUnsigned(const std::uint8_t *data, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < std::min(size, sizeof value); ++i)
        value = value << 8 | data[i];
    return value;
}

double readNumber(const std::uint8_t *data, std::size_t size)
{
    const std::uint64_t bits = readUnsigned(data, size);
    if (size == sizeof(float)) {
        const auto half = static_cast<std::uint32_t>(bits);
        float value = 0;
        std::memcpy(&value, &half, sizeof value);
        return static_cast<double>(value);
    }
    double value = 0;
    if (size == sizeof value)
        std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace Ebml
} // namespace ZorvaneServer
