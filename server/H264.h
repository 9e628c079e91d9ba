// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "server/StreamFormat.h"
#include "service/NalUnit.h"

namespace ZorvaneServer {

/// Pictures of H.264, taken apart and put together.
namespace H264 {

using Unit = ZorvaneService::NalUnit;
using Units = std::vector<Unit>;

/// What decoders have to know before the first picture.
struct ParameterSets {
    std::vector<Bytes> sequence;
    std::vector<Bytes> picture;

    /// Both kinds of an AVCDecoderConfigurationRecord, or of units with start codes.
    static ParameterSets of(const std::uint8_t *setup, std::size_t size);
    /// Those among the units take the place of those of their kind. Whether anything changed.
    bool take(const Units &units);
    bool isComplete() const { return !sequence.empty() && !picture.empty(); }
    /// An AVCDecoderConfigurationRecord for lengths of four bytes; the sets are complete.
    Bytes record() const;
    Bytes withStartCodes() const;
};

/// In how many bytes units tell their lengths by an AVCDecoderConfigurationRecord; 0 when it
/// is none, and start codes are used.
std::size_t lengthBytesOf(const std::uint8_t *setup, std::size_t size);
/// The units of a picture behind lengths of four bytes, without what the record says already.
Bytes pictureOf(const Units &units);
bool isKey(const Units &units);

} // namespace H264
} // namespace ZorvaneServer
