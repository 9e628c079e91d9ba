// SPDX-License-Identifier: MIT
#include "server/WirePackets.h"

namespace ZorvaneServer {

bool WirePackets::turn(const MediaPacket &packet, std::int64_t momentMs,
                       ZorvaneService::MediaPacket *out, std::uint64_t number)
{
    change(packet.format);
    if (packet.track != Track::Video) {
        if (momentMs >= soundFromMs && shared)
            takeShared(shared->of(number, packet), momentMs - packet.momentMs);
        else if (momentMs >= soundFromMs && converter)
            converter->put(packet.data, momentMs);
        return takeMore(out);
    }
    out->isPicture = true;
    out->keyFrame = packet.isKey;
    out->momentMs = momentMs;
    wire.write(packet, &out->data);
    out->format = told;
    return true;
}

bool WirePackets::takeMore(ZorvaneService::MediaPacket *out)
{
    SoundConverter::Frame frame;
    if (!ready.empty()) {
        frame = std::move(ready.front());
        ready.pop_front();
    } else if (!converter || !converter->take(&frame)) {
        return false;
    }
    out->isPicture = false;
    out->keyFrame = false;
    out->momentMs = frame.momentMs;
    out->data = std::move(frame.data);
    out->format = told;
    return true;
}

void WirePackets::takeShared(const SharedSound::Frames &frames, std::int64_t laterMs)
{
    if (!frames)
        return;
    for (const SoundConverter::Frame &frame : *frames)
        ready.push_back({frame.momentMs + laterMs, frame.data});
}

/// Each segment has a format of its own, which mostly says the same.
void WirePackets::change(const FormatPtr &next)
{
    if (next == format)
        return;
    if (!format || *next != *format) {
        converter = withSound ? SoundConverter::of(*next) : nullptr;
        wire = WireFormat::of(*next);
        if (converter)
            wire.told.sound = ZorvaneService::MediaFormat::Sound::Mp3;
        if (shared)
            converter.reset(); // it has shown that the sound can be converted
        told = std::make_shared<const ZorvaneService::MediaFormat>(wire.told);
    }
    format = next;
}

} // namespace ZorvaneServer
