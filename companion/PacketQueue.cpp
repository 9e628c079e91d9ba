// SPDX-License-Identifier: MIT
#include "companion/PacketQueue.h"

#include <utility>

namespace ZorvaneClient {
namespace Companion {

namespace {

/// A longer step between two packets is a jump of the time stamps and no playing time.
constexpr auto maxStep = PacketQueue::Duration(10'000);

bool isKey(const QueuedPacket &item)
{
    return item.packet->flags & AV_PKT_FLAG_KEY;
}

} // namespace

PacketQueue::PacketQueue(Limits queueLimits) : limits(queueLimits)
{
}

void PacketQueue::push(QueuedPacket item)
{
    std::unique_lock<std::mutex> lock(mutex);
    if (limits.overflow == Overflow::Wait) {
        changed.wait(lock, [this] { return !isFull(); });
    } else if (isFull()) {
        removeAll();
        skipping = true;
    }
    const Duration step = stepOf(item);
    if (skipping && !isKey(item)) {
        dropped += step;
        return;
    }
    skipping = false;
    bytes += static_cast<size_t>(item.packet->size);
    waiting += step;
    entries.push_back({std::move(item), step});
    lock.unlock();
    changed.notify_all();
}

void PacketQueue::finish(End end)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ending = end;
    changed.notify_all();
}

void PacketQueue::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    removeAll();
    changed.notify_all();
}

PacketQueue::Taken PacketQueue::pop(QueuedPacket &item, Duration patience)
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, patience, [this] { return !entries.empty() || ending != End::None; });
    if (entries.empty())
        return ending == End::None ? Taken::Nothing : Taken::End;
    item = std::move(entries.front().item);
    item.droppedBefore = std::exchange(dropped, Duration(0));
    bytes -= static_cast<size_t>(item.packet->size);
    waiting -= entries.front().step;
    entries.pop_front();
    lock.unlock();
    if (limits.overflow == Overflow::Wait)
        changed.notify_all();
    return Taken::Packet;
}

bool PacketQueue::isEmpty() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return entries.empty();
}

PacketQueue::Duration PacketQueue::span() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return waiting;
}

PacketQueue::End PacketQueue::end() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return ending;
}

void PacketQueue::dropToKey(Duration reach)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Duration ahead{0};
    size_t target = 0;
    for (size_t i = 0; i < entries.size() && ahead <= reach; ++i) {
        ahead += entries[i].step;
        if (ahead <= reach && isKey(entries[i].item))
            target = i;
    }
    for (size_t i = 0; i < target; ++i)
        removeFirst();
    if (target > 0)
        changed.notify_all();
}

bool PacketQueue::isFull() const
{
    return bytes >= limits.bytes || waiting >= limits.span;
}

PacketQueue::Duration PacketQueue::stepOf(const QueuedPacket &item)
{
    const int64_t time = item.packet->dts;
    const auto step = Duration(time - std::exchange(lastTime, time).value_or(time));
    return step < Duration(0) || step > maxStep ? Duration(0) : step;
}

void PacketQueue::removeFirst()
{
    bytes -= static_cast<size_t>(entries.front().item.packet->size);
    waiting -= entries.front().step;
    dropped += entries.front().step;
    entries.pop_front();
}

void PacketQueue::removeAll()
{
    dropped += waiting;
    entries.clear();
    bytes = 0;
    waiting = Duration(0);
}

} // namespace Companion
} // namespace ZorvaneClient
