// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

#include "demo/Fault.h"
#include "demo/Http.h"

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

    /// The first fault that matches, which this uses up once.
    std::optional<Fault> take(const HttpRequest &request);
    /// The same without using it up, for a stream that is being sent.
    std::optional<Fault> peek(const HttpRequest &request) const;

    /// Serves `reply` the way the matching fault says; without one, as it is.
    HttpReply apply(const HttpRequest &request, HttpReply reply);

private:
    HttpReply::Stream spoiled(const HttpRequest &request, const std::optional<Fault> &fault,
                              HttpReply *reply) const;

    mutable std::mutex mutex;
    std::map<int, Fault> faults;
    int nextNumber = 1;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
