// SPDX-License-Identifier: MIT
#include "server/LiveRing.h"

namespace ZorvaneServer {

void LiveRing::put(PacketPtr packet)
{
    // Sound goes with the picture that it comes before: nobody is woken for it.
    const bool wakes = !packet || packet->track == Track::Video;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!packet) {
            first = end();
            packets.clear();
            bytes = 0;
            groups = 0;
            key.reset();
            keyNumber = 0;
        } else if (key || packet->isKeyPicture()) {
            if (packet->isKeyPicture()) {
                key = packet;
                keyNumber = end();
                ++groups;
            }
            if (packet->track == Track::Video)
                newestMs = packet->momentMs;
            bytes += packet->data.size();
            packets.push_back(std::move(packet));
            while (groups > mostGroups || bytes > mostBytes ||
                   (first < keyNumber && !packets.front()->isKeyPicture()))
                pop();
        }
    }
    if (wakes)
        wake.notify_all();
}

void LiveRing::pop()
{
    const MediaPacket &oldest = *packets.front();
    bytes -= oldest.data.size();
    groups -= oldest.isKeyPicture() ? 1 : 0;
    packets.pop_front();
    ++first;
}

std::optional<std::int64_t> LiveRing::begin(Place *place) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!key)
        return {};
    *place = {keyNumber, false};
    return newestMs;
}

PacketPtr LiveRing::take(Place *place, std::chrono::milliseconds longestWait)
{
    std::unique_lock<std::mutex> lock(mutex);
    const auto isThere = [&] {
        return place->awaitsKey ? keyNumber >= place->next : end() > place->next;
    };
    if (!wake.wait_for(lock, longestWait, isThere))
        return nullptr;
    const bool isLost = place->next < first;
    const bool isLate =
        !isLost && newestMs - packets[place->next - first]->momentMs > farthestBack.count();
    if (place->awaitsKey || (keyNumber > place->next && (isLost || isLate)))
        *place = {keyNumber, false};
    if (place->next >= first)
        return packets[place->next++ - first];
    // The group was too large to be kept: its key picture is seen until the next one comes.
    const bool isAtKey = place->next == keyNumber;
    *place = {end(), true};
    return isAtKey ? key : nullptr;
}

PacketPtr LiveRing::newestKey() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return key;
}

std::shared_ptr<SharedSound> LiveRing::sound()
{
    const std::lock_guard<std::mutex> lock(mutex);
    auto current = sharedSound.lock();
    if (!current)
        sharedSound = current = std::make_shared<SharedSound>();
    return current;
}

} // namespace ZorvaneServer
