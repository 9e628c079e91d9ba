// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "service/Bytes.h"

namespace ZorvaneService {

/// One unit of an H.264 stream, in bytes that others own.
struct NalUnit {
    enum Type : unsigned { Slice = 1, IdrSlice = 5, SequenceSet = 7, PictureSet = 8 };

    const std::uint8_t *data;
    std::size_t size;

    unsigned type() const { return typeOf(data[0]); }
    /// By a unit's first byte.
    static unsigned typeOf(std::uint8_t header) { return header & 0x1fu; }
};

/// The units of a byte stream with start codes.
std::vector<NalUnit> unitsAfterStartCodes(const std::uint8_t *data, std::size_t size);

// Clips and FLV have each unit after its length in four bytes instead.
void appendWithLength(const NalUnit &unit, Bytes *out);
std::vector<NalUnit> unitsAfterLengths(const Bytes &picture);

} // namespace ZorvaneService
