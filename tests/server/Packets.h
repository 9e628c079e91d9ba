// SPDX-License-Identifier: MIT
#pragma once

#include <random>
#include <vector>

#include "server/MediaPacket.h"

namespace ZorvaneClient::Tests {

using ZorvaneServer::Bytes;
using ZorvaneServer::MediaPacket;
using ZorvaneServer::Track;

inline ZorvaneServer::FormatPtr aFormat(int width = 1920)
{
    ZorvaneServer::StreamFormat format;
    format.width = width;
    format.height = 1080;
    format.videoSetup = {1, 0x64, 0, 0x28, 0xff, 0xe1, 0, 1, 0x67, 1, 0, 1, 0x68};
    format.sound = ZorvaneServer::SoundCodec::Aac;
    format.soundRate = 16'000;
    format.soundChannels = 1;
    format.soundSetup = {0x14, 0x08};
    return std::make_shared<ZorvaneServer::StreamFormat>(format);
}

inline MediaPacket aPicture(std::int64_t momentMs, bool isKey, std::size_t size = 3)
{
    return {Track::Video, isKey, 0, momentMs, aFormat(), Bytes(size, 0x41)};
}

/// Pictures of random sizes and distances, with key frames here and there and sound between
/// them. The first is a key frame. Their bytes are made to look like the notation around them.
inline std::vector<MediaPacket> randomPackets(unsigned seed, int count, std::int64_t startMs)
{
    std::mt19937 random(seed);
    const auto upTo = [&random](unsigned most) { return random() % (most + 1); };
    const Bytes cluster = {0x1f, 0x43, 0xb6, 0x75, 0xa3, 0xe7, 0x81};
    std::vector<MediaPacket> packets;
    std::int64_t momentMs = startMs;
    for (int i = 0; i < count; ++i) {
        const bool isSound = i > 0 && upTo(2) == 0;
        MediaPacket packet = aPicture(momentMs, i == 0 || (!isSound && upTo(20) == 0));
        packet.track = isSound ? Track::Sound : Track::Video;
        packet.isKey |= isSound;
        packet.data.resize(1 + upTo(i % 50 == 0 ? 70'000 : 300));
        for (std::size_t at = 0; at < packet.data.size(); ++at)
            packet.data[at] = cluster[(at + i) % cluster.size()];
        packets.push_back(packet);
        momentMs += isSound ? 0 : 1 + upTo(i % 97 == 0 ? 40'000 : 400);
    }
    return packets;
}

} // namespace ZorvaneClient::Tests
