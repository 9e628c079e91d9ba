// SPDX-License-Identifier: MIT
#include "demo/Faults.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace ZorvaneDemo {

namespace {

using namespace std::chrono_literals;

constexpr auto waitStep = 20ms;
constexpr std::size_t slowSlicesPerSecond = 20;
constexpr std::uint32_t garbledByteOf = 97;

constexpr std::array<std::pair<const char *, Fault::Kind>, 10> kinds{{
    {"close", Fault::Kind::Close},
    {"stall", Fault::Kind::Stall},
    {"truncate", Fault::Kind::Truncate},
    {"garble", Fault::Kind::Garble},
    {"slow", Fault::Kind::Slow},
    {"delay", Fault::Kind::Delay},
    {"empty", Fault::Kind::Empty},
    {"redirect", Fault::Kind::Redirect},
    {"nonjson", Fault::Kind::NonJson},
    {"status", Fault::Kind::Status},
}};

bool changesBytes(Fault::Kind kind)
{
    return kind == Fault::Kind::Close || kind == Fault::Kind::Stall ||
           kind == Fault::Kind::Truncate || kind == Fault::Kind::Garble ||
           kind == Fault::Kind::Slow;
}

/// Passes a body on and does to its bytes what the fault in force says. Looks again when
/// the faults change, so that a stream that already runs is hit too.
class FaultySink : public BodySink
{
public:
    FaultySink(BodySink &next, Faults &faultsInForce, HttpRequest of, std::optional<Fault> first)
        : target(next)
        , faults(faultsInForce)
        , request(std::move(of))
        , fault(std::move(first))
        , seen(faults.generation())
    {
    }

    bool write(const void *data, std::size_t size) override
    {
        const auto *bytes = static_cast<const std::uint8_t *>(data);
        while (size > 0) {
            look();
            if (!fault || !changesBytes(fault->kind))
                return pass(bytes, size);
            const std::size_t clean = untouched(size);
            if (clean > 0 && !pass(bytes, clean))
                return false;
            bytes += clean;
            size -= clean;
            if (size > 0 && !spoil(&bytes, &size))
                return false;
        }
        return true;
    }

    bool isOpen() override { return target.isOpen(); }

private:
    void look()
    {
        if (faults.generation() == seen)
            return;
        seen = faults.generation();
        fault = faults.peek(request);
        passedBefore = passed;
    }

    bool pass(const std::uint8_t *bytes, std::size_t size)
    {
        passed += static_cast<std::int64_t>(size);
        return target.write(bytes, size);
    }

    /// How many of the next bytes the fault still lets through.
    std::size_t untouched(std::size_t size) const
    {
        const std::int64_t left = fault->after - (passed - passedBefore);
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(left, 0, static_cast<std::int64_t>(size)));
    }

    bool spoil(const std::uint8_t **bytes, std::size_t *size)
    {
        switch (fault->kind) {
        case Fault::Kind::Truncate:
            // Half of what was to be written: never the end of a packet.
            target.write(*bytes, *size / 2);
            return false;
        case Fault::Kind::Stall: {
            const std::uint64_t generation = faults.generation();
            while (faults.generation() == generation) {
                if (!target.isOpen())
                    return false;
                std::this_thread::sleep_for(waitStep);
            }
            return true;
        }
        case Fault::Kind::Garble:
            return garble(bytes, size);
        case Fault::Kind::Slow: {
            const auto rate = static_cast<std::size_t>(std::max<std::int64_t>(fault->value, 1));
            const std::size_t count =
                std::min(*size, std::max<std::size_t>(rate / slowSlicesPerSecond, 1));
            std::this_thread::sleep_for(std::chrono::microseconds(count * 1'000'000 / rate));
            const bool good = pass(*bytes, count);
            *bytes += count;
            *size -= count;
            return good;
        }
        default:
            return false;
        }
    }

    bool garble(const std::uint8_t **bytes, std::size_t *size)
    {
        std::vector<std::uint8_t> spoiled(*bytes, *bytes + *size);
        for (std::uint8_t &byte : spoiled) {
            random = random * 1664525u + 1013904223u;
            if ((random >> 8) % garbledByteOf == 0)
                byte ^= static_cast<std::uint8_t>(1u + (random >> 16) % 255u);
        }
        *size = 0;
        return pass(spoiled.data(), spoiled.size());
    }

    BodySink &target;
    Faults &faults;
    const HttpRequest request;
    std::optional<Fault> fault;
    std::uint64_t seen;
    std::int64_t passed = 0;
    std::int64_t passedBefore = 0; ///< when the fault in force was found
    std::uint32_t random = 1;
};

HttpReply withLocation(const std::string &location)
{
    HttpReply reply;
    reply.status = 302;
    reply.headers.emplace_back("Location", location);
    return reply;
}

} // namespace

std::optional<Fault> Fault::fromJson(const nlohmann::json &json)
{
    const std::string name = json.value("kind", "");
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const auto &entry) { return name == entry.first; });
    if (found == kinds.end())
        return std::nullopt;
    Fault fault;
    fault.kind = found->second;
    fault.listener = json.value("listener", "");
    fault.route = json.value("route", "");
    fault.server = json.value("server", "");
    fault.camera = json.value("camera", fault.camera);
    fault.times = json.value("times", fault.times);
    fault.value = json.value("value", fault.value);
    fault.after = json.value("after", fault.after);
    fault.location = json.value("location", "");
    return fault;
}

bool Fault::matches(const HttpRequest &request) const
{
    if (!listener.empty() && listener != request.listener)
        return false;
    if (!route.empty()) {
        const bool beginning = route.back() == '*';
        const std::size_t length = route.size() - (beginning ? 1 : 0);
        if (request.path.compare(0, length, route, 0, length) != 0 ||
            (!beginning && request.path.size() != length))
            return false;
    }
    if (server.empty() && camera < 0)
        return true;
    auto parameters = request.parameters();
    return (server.empty() || parameters["server"] == server) &&
           (camera < 0 || numberOr(parameters["camera"], -1) == camera);
}

int Faults::add(const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(mutex);
    faults[nextNumber] = fault;
    ++changes;
    return nextNumber++;
}

bool Faults::remove(int number)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++changes;
    return faults.erase(number) > 0;
}

void Faults::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    faults.clear();
    ++changes;
}

nlohmann::json Faults::describe() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    auto result = nlohmann::json::array();
    for (const auto &[number, fault] : faults) {
        const auto kind =
            std::find_if(kinds.begin(), kinds.end(),
                         [found = fault.kind](const auto &entry) { return entry.second == found; });
        result.push_back({{"number", number},
                          {"kind", kind->first},
                          {"route", fault.route},
                          {"times", fault.times}});
    }
    return result;
}

std::optional<Fault> Faults::take(const HttpRequest &request)
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto &[number, fault] : faults) {
        if (fault.times == 0 || !fault.matches(request))
            continue;
        if (fault.times > 0)
            --fault.times;
        return fault;
    }
    return std::nullopt;
}

std::optional<Fault> Faults::peek(const HttpRequest &request) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    for (const auto &[number, fault] : faults) {
        if (fault.times != 0 && fault.matches(request))
            return fault;
    }
    return std::nullopt;
}

HttpReply Faults::apply(const HttpRequest &request, HttpReply reply)
{
    const std::optional<Fault> fault = take(request);
    if (fault) {
        switch (fault->kind) {
        case Fault::Kind::Delay:
            std::this_thread::sleep_for(std::chrono::milliseconds(fault->value));
            return reply;
        case Fault::Kind::Empty:
            reply.body.clear();
            reply.stream = nullptr;
            return reply;
        case Fault::Kind::Redirect:
            return withLocation(fault->location);
        case Fault::Kind::NonJson:
            reply.body = "<html><body>Please sign in to the guest network</body></html>";
            reply.contentType = "text/html";
            reply.stream = nullptr;
            return reply;
        case Fault::Kind::Status:
            reply.status = static_cast<int>(fault->value);
            return reply;
        case Fault::Kind::Close:
            reply.hangUp = fault->after == 0;
            if (reply.hangUp) {
                reply.stream = nullptr;
                return reply;
            }
            break;
        default:
            break;
        }
    }
    const bool running = static_cast<bool>(reply.stream);
    if (!running && !fault)
        return reply;
    const auto write = running ? reply.stream : [body = reply.body](BodySink &sink) {
        return sink.write(body.data(), body.size());
    };
    if (!running) {
        // The receiver is told the whole length and can see that a part is missing.
        reply.headers.emplace_back("Content-Length", std::to_string(reply.body.size()));
    }
    reply.stream = [this, request, fault, write](BodySink &sink) {
        FaultySink faulty(sink, *this, request, fault);
        return write(faulty);
    };
    return reply;
}

} // namespace ZorvaneDemo
