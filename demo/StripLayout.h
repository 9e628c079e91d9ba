// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "demo/BitStream.h"
#include "demo/ServiceWords.h"
#include "service/NalUnit.h"

namespace ZorvaneDemo {

/// Side of the square that H.264 codes as one, in luma samples.
constexpr int macroblock = 16;

/// What a slice of the strip shares with every other picture of its clip.
struct StripLayout {
    std::uint16_t widthMbs = 0;
    std::uint16_t firstRow = 0; ///< row of macroblocks where the strip's slice begins
    std::uint16_t rows = 0;     ///< of macroblocks
    std::uint16_t cellTop = 0;  ///< first line of the cells, counted from the slice's top
    std::uint8_t frameNumBits = 0;
    std::uint8_t pocType = 0;
    std::uint8_t pocBits = 0;
    std::int8_t initialQp = 26;

    /// Fills what the parameter sets say. They must be those of a progressive CAVLC stream
    /// without slice groups, in the form the clip encoder makes; false if not.
    bool readParameterSets(const Bytes &sps, const Bytes &pps);

private:
    bool readSequenceSet(const Bytes &sps);
    bool readPictureSet(const Bytes &pps);
};

/// What the slice repeats from the picture it belongs to.
struct StripPicture {
    std::uint8_t nalHeader = 0;
    std::uint8_t reserved = 0;
    std::uint16_t frameNum = 0;
    std::uint16_t idrPicId = 0;
    std::uint16_t pocLsb = 0;

    bool isIdr() const { return NalUnit::typeOf(nalHeader) == NalUnit::IdrSlice; }
    bool isReference() const { return nalHeader & 0x60; }

    /// Reads it from any slice of that picture.
    static StripPicture fromSlice(const StripLayout &layout, const std::uint8_t *nal,
                                  std::size_t size);
};

} // namespace ZorvaneDemo
