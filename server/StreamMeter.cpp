// SPDX-License-Identifier: MIT
#include "server/StreamMeter.h"

#include <algorithm>

namespace ZorvaneServer {

namespace {

constexpr double bitsOfByte = 8;
constexpr double bitsOfKilobit = 1000;

std::int64_t secondOf(StreamMeter::Moment moment)
{
    return moment / std::chrono::seconds(1);
}

} // namespace

void StreamMeter::take(const MediaPacket *packet, Moment now, std::int64_t nowMs)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!packet) {
        connectedMs.reset();
        return;
    }
    const std::int64_t number = secondOf(now);
    if (!connectedMs) {
        connectedMs = nowMs;
        firstSecond = number + 1;
    }
    Second &second = seconds[static_cast<std::size_t>(number) % seconds.size()];
    if (second.number != number)
        second = {number, 0, 0};
    second.pictures += packet->track == Track::Video ? 1 : 0;
    second.bytes += static_cast<std::int64_t>(packet->data.size());
}

StreamMeter::Reading StreamMeter::read(Moment now) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    Reading reading{connectedMs, 0, 0};
    const std::int64_t end = secondOf(now);
    const std::int64_t begin = std::max(firstSecond, end - meanOf);
    if (!connectedMs || begin >= end)
        return reading;
    const auto length = static_cast<double>(end - begin);
    for (const Second &second : seconds) {
        if (second.number < begin || second.number >= end)
            continue;
        reading.picturesPerSecond += second.pictures / length;
        reading.kilobitsPerSecond +=
            static_cast<double>(second.bytes) * bitsOfByte / bitsOfKilobit / length;
    }
    return reading;
}

} // namespace ZorvaneServer
