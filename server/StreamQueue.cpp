// SPDX-License-Identifier: MIT
#include "server/StreamQueue.h"

#include <utility>

namespace ZorvaneServer {

int StreamQueue::push(PacketPtr packet, std::chrono::microseconds now)
{
    if (packet)
        bytes += packet->data.size();
    items.push_back({std::move(packet), now});
    int dropped = 0;
    while (!items.empty() && (now - items.front().since > longest || bytes > mostBytes))
        dropped += dropGroup();
    return dropped;
}

void StreamQueue::pop()
{
    if (front())
        bytes -= front()->data.size();
    items.pop_front();
}

/// The first picture and all up to the next key picture.
int StreamQueue::dropGroup()
{
    int pictures = 0;
    do {
        pictures += front() && front()->track == Track::Video ? 1 : 0;
        pop();
    } while (!items.empty() && !(front() && front()->isKeyPicture()));
    return pictures;
}

} // namespace ZorvaneServer
