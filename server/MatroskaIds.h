// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace ZorvaneServer {

/// Ids of the Matroska elements that segments are made of.
namespace MatroskaId {

enum : std::uint32_t {
    Ebml = 0x1a45dfa3,
    EbmlVersion = 0x4286,
    EbmlReadVersion = 0x42f7,
    EbmlMaxIdLength = 0x42f2,
    EbmlMaxSizeLength = 0x42f3,
    DocType = 0x4282,
    DocTypeVersion = 0x4287,
    DocTypeReadVersion = 0x4285,
    Segment = 0x18538067,
    SeekHead = 0x114d9b74,
    Seek = 0x4dbb,
    SeekId = 0x53ab,
    SeekPosition = 0x53ac,
    Info = 0x1549a966,
    TimestampScale = 0x2ad7b1,
    Duration = 0x4489,
    DateUtc = 0x4461,
    MuxingApp = 0x4d80,
    WritingApp = 0x5741,
    Tracks = 0x1654ae6b,
    TrackEntry = 0xae,
    TrackNumber = 0xd7,
    TrackUid = 0x73c5,
    TrackType = 0x83,
    FlagLacing = 0x9c,
    Language = 0x22b59c,
    CodecId = 0x86,
    CodecPrivate = 0x63a2,
    Video = 0xe0,
    PixelWidth = 0xb0,
    PixelHeight = 0xba,
    Audio = 0xe1,
    SamplingFrequency = 0xb5,
    Channels = 0x9f,
    BitDepth = 0x6264,
    Cluster = 0x1f43b675,
    Timestamp = 0xe7,
    SimpleBlock = 0xa3,
    Cues = 0x1c53bb6b,
    CuePoint = 0xbb,
    CueTime = 0xb3,
    CueTrackPositions = 0xb7,
    CueTrack = 0xf7,
    CueClusterPosition = 0xf1
};

} // namespace MatroskaId
} // namespace ZorvaneServer
