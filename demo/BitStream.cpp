// SPDX-License-Identifier: MIT
#include "demo/BitStream.h"

namespace ZorvaneDemo {

void BitWriter::bits(unsigned value, int count)
{
    for (int bit = count - 1; bit >= 0; --bit) {
        if (free == 0) {
            data.push_back(0);
            free = 8;
        }
        --free;
        data.back() |= static_cast<std::uint8_t>(((value >> bit) & 1u) << free);
    }
}

void BitWriter::ue(unsigned value)
{
    const unsigned code = value + 1;
    int length = 0;
    while ((code >> length) > 1)
        ++length;
    bits(0, length);
    bits(code, length + 1);
}

void BitWriter::se(int value)
{
    ue(value > 0 ? static_cast<unsigned>(2 * value - 1) : static_cast<unsigned>(-2 * value));
}

void BitWriter::trailing()
{
    bits(1, 1);
    free = 0;
}

unsigned BitReader::bits(int count)
{
    unsigned value = 0;
    for (int i = 0; i < count; ++i, ++position) {
        const std::size_t byte = position / 8;
        const unsigned bit = byte < size ? (data[byte] >> (7 - position % 8)) & 1u : 0u;
        value = (value << 1) | bit;
    }
    return value;
}

unsigned BitReader::ue()
{
    int zeros = 0;
    while (zeros < 31 && position < size * 8 && bits(1) == 0)
        ++zeros;
    return (1u << zeros) - 1 + bits(zeros);
}

int BitReader::se()
{
    const unsigned code = ue();
    const int half = static_cast<int>((code + 1) / 2);
    return code % 2 ? half : -half;
}

Bytes withoutEmulation(const std::uint8_t *bytes, std::size_t count)
{
    Bytes result;
    result.reserve(count);
    int zeros = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (zeros >= 2 && bytes[i] == 3) {
            zeros = 0;
            continue;
        }
        zeros = bytes[i] == 0 ? zeros + 1 : 0;
        result.push_back(bytes[i]);
    }
    return result;
}

Bytes withEmulation(const Bytes &payload)
{
    Bytes result;
    result.reserve(payload.size() + payload.size() / 64 + 4);
    int zeros = 0;
    for (const std::uint8_t byte : payload) {
        if (zeros >= 2 && byte <= 3) {
            result.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        result.push_back(byte);
    }
    return result;
}

} // namespace ZorvaneDemo
