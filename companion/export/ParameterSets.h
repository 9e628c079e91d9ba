// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "companion/AvHandles.h"

namespace ZorvaneClient {
namespace Companion {

/// Keeps the parameter sets of an H.264 stream with its key frames. The records of one archive
/// can differ in them, and the head of a file holds only the first.
class ParameterSets
{
public:
    /// Takes the sets from a configuration record, as FLV and MP4 have it.
    void set(const uint8_t *record, size_t size);
    /// Puts the sets in force into a key frame that has none. A packet may bring new ones.
    bool apply(AVPacket &packet);

private:
    bool insertInto(AVPacket &packet, size_t place) const;

    std::vector<uint8_t> units; ///< each after its length
    size_t lengthBytes = 4;
};

} // namespace Companion
} // namespace ZorvaneClient
