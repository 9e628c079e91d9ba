// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "service/Bytes.h"

namespace ZorvaneService {

/// One unit of an H.264 stream, in bytes that others own.
struct NalUnit {
    enum Type : unsigned {
        Slice = 1,
        IdrSlice = 5,
        SequenceSet = 7,
        PictureSet = 8,
        Delimiter = 9
    };

    const std::uint8_t *data;
    std::size_t size; ///< never 0

    unsigned type() const { return typeOf(data[0]); }
    /// By a unit's first byte.
    static unsigned typeOf(std::uint8_t header) { return header & 0x1fu; }
};

constexpr std::size_t nalLengthBytes = 4;

/// The units of a byte stream with start codes.
std::vector<NalUnit> unitsAfterStartCodes(const std::uint8_t *data, std::size_t size);
/// The units of a picture that has each after its length in so many bytes, as clips, FLV and
/// archives do. One that is cut off ends with the picture.
std::vector<NalUnit> unitsAfterLengths(const std::uint8_t *data, std::size_t size,
                                       std::size_t lengthBytes = nalLengthBytes);
/// In that form.
void appendWithLength(const NalUnit &unit, Bytes *out);

} // namespace ZorvaneService
