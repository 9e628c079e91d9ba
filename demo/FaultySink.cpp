// SPDX-License-Identifier: MIT
#include "demo/FaultySink.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "demo/Faults.h"

namespace ZorvaneDemo {

namespace {

using namespace std::chrono_literals;

constexpr auto waitStep = 20ms;
constexpr std::size_t slowSlicesPerSecond = 20;
constexpr std::uint32_t garbledByteOf = 97;

} // namespace

FaultySink::FaultySink(BodySink &next, const Faults &faultsInForce, HttpRequest of,
                       std::optional<Fault> first)
    : target(next)
    , faults(faultsInForce)
    , request(std::move(of))
    , fault(std::move(first))
    , seen(faults.generation())
{
}

bool FaultySink::write(const void *data, std::size_t size)
{
    Rest rest = {static_cast<const std::uint8_t *>(data), size};
    while (rest.size > 0) {
        look();
        if (!fault || !fault->changesBytes())
            return pass(&rest, rest.size);
        const std::size_t clean = untouched(rest.size);
        if (clean > 0 && !pass(&rest, clean))
            return false;
        if (rest.size > 0 && !spoil(&rest))
            return false;
    }
    return true;
}

void FaultySink::Rest::drop(std::size_t count)
{
    bytes += count;
    size -= count;
}

void FaultySink::look()
{
    if (faults.generation() == seen)
        return;
    seen = faults.generation();
    fault = faults.peek(request);
    passedBefore = passed;
}

bool FaultySink::pass(Rest *rest, std::size_t count)
{
    const bool good = target.write(rest->bytes, count);
    passed += static_cast<std::int64_t>(count);
    rest->drop(count);
    return good;
}

/// How many of the next bytes the fault still lets through.
std::size_t FaultySink::untouched(std::size_t size) const
{
    const std::int64_t left = fault->after - (passed - passedBefore);
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(left, 0, static_cast<std::int64_t>(size)));
}

/// False ends the body.
bool FaultySink::spoil(Rest *rest)
{
    switch (fault->kind) {
    case Fault::Kind::Truncate:
        return truncate(*rest);
    case Fault::Kind::Stall:
        return stall();
    case Fault::Kind::Garble:
        return garble(rest);
    case Fault::Kind::Slow:
        return slow(rest);
    default: // Close: nothing more is written
        return false;
    }
}

/// Half of what was to be written: never the end of a packet.
bool FaultySink::truncate(const Rest &rest)
{
    target.write(rest.bytes, rest.size / 2);
    return false;
}

/// Holds until the faults change or the receiver goes.
bool FaultySink::stall()
{
    const std::uint64_t generation = faults.generation();
    while (faults.generation() == generation) {
        if (!target.isOpen())
            return false;
        std::this_thread::sleep_for(waitStep);
    }
    return true;
}

bool FaultySink::garble(Rest *rest)
{
    std::vector<std::uint8_t> spoiled(rest->bytes, rest->bytes + rest->size);
    for (std::uint8_t &byte : spoiled) {
        random = random * 1664525u + 1013904223u;
        if ((random >> 8) % garbledByteOf == 0)
            byte ^= static_cast<std::uint8_t>(1u + (random >> 16) % 255u);
    }
    Rest instead = {spoiled.data(), spoiled.size()};
    rest->drop(rest->size);
    return pass(&instead, instead.size);
}

bool FaultySink::slow(Rest *rest)
{
    const auto rate = static_cast<std::size_t>(std::max<std::int64_t>(fault->value, 1));
    const std::size_t count =
        std::min(rest->size, std::max<std::size_t>(rate / slowSlicesPerSecond, 1));
    std::this_thread::sleep_for(std::chrono::microseconds(count * 1'000'000 / rate));
    return pass(rest, count);
}

} // namespace ZorvaneDemo
