// SPDX-License-Identifier: MIT
#include "demo/Faults.h"

#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "demo/FaultySink.h"
#include "service/HttpStatus.h"

namespace ZorvaneDemo {

namespace {

HttpReply withLocation(const std::string &location)
{
    HttpReply reply;
    reply.status = HttpStatus::Found;
    reply.headers.emplace_back("Location", location);
    return reply;
}

/// What comes in the reply's place, by a fault that isn't about single bytes.
HttpReply replaced(const Fault &fault, HttpReply reply)
{
    switch (fault.kind) {
    case Fault::Kind::Delay:
        std::this_thread::sleep_for(std::chrono::milliseconds(fault.value));
        break;
    case Fault::Kind::Empty:
        reply.body.clear();
        reply.stream = nullptr;
        break;
    case Fault::Kind::Redirect:
        return withLocation(fault.location);
    case Fault::Kind::NonJson:
        reply.body = "<html><body>Please sign in to the guest network</body></html>";
        reply.contentType = "text/html";
        reply.stream = nullptr;
        break;
    case Fault::Kind::Status:
        reply.status = static_cast<int>(fault.value);
        break;
    default:
        break;
    }
    return reply;
}

} // namespace

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
        result.push_back(fault.toJson());
        result.back()["number"] = number;
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
    if (fault && !fault->changesBytes())
        return replaced(*fault, std::move(reply));
    if (fault && fault->kind == Fault::Kind::Close && fault->after == 0) {
        reply.hangUp = true;
        reply.stream = nullptr;
    } else if (fault || reply.stream) {
        // A stream that is whole now may be hit while it runs.
        reply.stream = spoiled(request, fault, &reply);
    }
    return reply;
}

HttpReply::Stream Faults::spoiled(const HttpRequest &request, const std::optional<Fault> &fault,
                                  HttpReply *reply) const
{
    if (!reply->stream) {
        // The receiver is told the whole length and can see that a part is missing.
        reply->headers.emplace_back("Content-Length", std::to_string(reply->body.size()));
        reply->stream = [body = reply->body](BodySink &sink) {
            return sink.write(body.data(), body.size());
        };
    }
    return [this, request, fault, write = reply->stream](BodySink &sink) {
        FaultySink faulty(sink, *this, request, fault);
        return write(faulty);
    };
}

} // namespace ZorvaneDemo
