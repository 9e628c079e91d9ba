// SPDX-License-Identifier: MIT
#include "server/SharedSound.h"

#include <algorithm>

namespace ZorvaneServer {

SharedSound::Frames SharedSound::of(std::uint64_t number, const MediaPacket &packet)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (kept.empty() || kept.back().number < number) {
        kept.push_back({number, make(packet)});
        if (kept.size() > mostKept)
            kept.pop_front();
    }
    const auto found =
        std::lower_bound(kept.begin(), kept.end(), number,
                         [](const Made &made, std::uint64_t one) { return made.number < one; });
    return found->number == number ? found->frames : nullptr;
}

SharedSound::Frames SharedSound::make(const MediaPacket &packet)
{
    if (packet.format != format && (!format || *packet.format != *format))
        converter = SoundConverter::of(*packet.format);
    format = packet.format;
    auto frames = std::make_shared<std::vector<SoundConverter::Frame>>();
    if (converter) {
        converter->put(packet.data, packet.momentMs);
        for (SoundConverter::Frame frame; converter->take(&frame);)
            frames->push_back(std::move(frame));
    }
    return frames;
}

} // namespace ZorvaneServer
