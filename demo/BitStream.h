// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "demo/ServiceWords.h"
#include "service/Bytes.h"

namespace ZorvaneDemo {

/// Writes bits from the highest down, with the Exp-Golomb codes of H.264.
class BitWriter
{
public:
    void bits(unsigned value, int count);
    void ue(unsigned value);
    void se(int value);
    /// Adds the stop bit and fills the last byte.
    void trailing();
    const Bytes &bytes() const { return data; }

private:
    Bytes data;
    int free = 0; ///< unused bits of the last byte
};

/// Reads what BitWriter writes; beyond the end it reads zeros.
class BitReader
{
public:
    BitReader(const std::uint8_t *bytes, std::size_t count) : data(bytes), size(count) {}
    unsigned bits(int count);
    unsigned ue();
    int se();

private:
    const std::uint8_t *data;
    std::size_t size;
    std::size_t position = 0; ///< in bits
};

/// A NAL unit's payload without its emulation prevention bytes, and with them put in.
Bytes withoutEmulation(const std::uint8_t *bytes, std::size_t count);
Bytes withEmulation(const Bytes &payload);

} // namespace ZorvaneDemo
