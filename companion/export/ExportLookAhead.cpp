// SPDX-License-Identifier: MIT
#include "companion/export/ExportLookAhead.h"

#include <utility>

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr auto lookAhead = std::chrono::milliseconds(2000);
constexpr size_t maxBytes = size_t(16) * 1024 * 1024;

/// Slots for pictures are never farther apart, so that a camera may become faster.
constexpr int64_t longestSlotMilliseconds = 40;
constexpr int64_t shortestSlotMilliseconds = 10;
constexpr int64_t millisecondsPerSecond = 1000;

} // namespace

void ExportLookAhead::add(ExportSample sample)
{
    bytes += static_cast<size_t>(sample.packet->size);
    samples.push_back(std::move(sample));
}

bool ExportLookAhead::isEnough(std::chrono::milliseconds length) const
{
    return length >= lookAhead || bytes >= maxBytes;
}

std::vector<const AVPacket *> ExportLookAhead::packets(ExportTimeline::Kind kind) const
{
    std::vector<const AVPacket *> found;
    for (const ExportSample &sample : samples) {
        if (sample.kind == kind)
            found.push_back(sample.packet.get());
    }
    return found;
}

AVRational ExportLookAhead::pictureSlot() const
{
    const std::vector<const AVPacket *> pictures = packets(ExportTimeline::Video);
    const auto steps = static_cast<int64_t>(pictures.size()) - 1;
    const int64_t span = pictures.back()->dts - pictures.front()->dts;
    if (steps < 1 || span < steps * shortestSlotMilliseconds)
        return {shortestSlotMilliseconds, millisecondsPerSecond};
    const int64_t longest = steps * longestSlotMilliseconds;
    const int64_t slots = (span + longest - 1) / longest * steps;
    AVRational slot = {};
    av_reduce(&slot.num, &slot.den, span, slots * millisecondsPerSecond, INT16_MAX);
    return slot;
}

std::deque<ExportSample> ExportLookAhead::take()
{
    return std::exchange(samples, {});
}

} // namespace Companion
} // namespace ZorvaneClient
