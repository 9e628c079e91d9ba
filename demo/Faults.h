// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

#include "demo/Fault.h"
#include "demo/ServiceWords.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// The faults in force. Safe to use from any thread.
class Faults
{
public:
    int add(const Fault &fault);
    bool remove(int number);
    void clear();
    nlohmann::json describe() const;
    std::uint64_t generation() const { return changes; }

    /// Serves `reply` the way the first fault that matches says, which uses that up once;
    /// without one, as it is.
    HttpReply apply(const HttpRequest &request, HttpReply reply);
    /// The first fault that matches, not used up, for a stream that is being sent.
    std::optional<Fault> peek(const HttpRequest &request) const;

private:
    std::optional<Fault> take(const HttpRequest &request);
    HttpReply::Stream spoiled(const HttpRequest &request, const std::optional<Fault> &fault,
                              HttpReply *reply) const;

    mutable std::mutex mutex;
    std::map<int, Fault> faults;
    int nextNumber = 1;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
