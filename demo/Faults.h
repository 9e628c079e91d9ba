// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "demo/Http.h"

namespace ZorvaneDemo {

/// Something that goes wrong on purpose with the replies it matches.
struct Fault {
    enum class Kind {
        Close,
        Stall,
        Truncate,
        Garble,
        Slow,
        Delay,
        Empty,
        Redirect,
        NonJson,
        Status
    };

    Kind kind = Kind::Close;
    std::string listener;     ///< empty: any
    std::string route;        ///< empty: any; with a '*' at its end: a beginning
    std::string server;       ///< empty: any
    std::int64_t camera = -1; ///< -1: any
    std::int64_t times = -1;  ///< -1: until cleared
    std::int64_t value = 0;
    std::int64_t after = 0;
    std::string location;

    /// Nothing when `json` names no known kind.
    static std::optional<Fault> fromJson(const nlohmann::json &json);
    bool matches(const HttpRequest &request) const;
};

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
    mutable std::mutex mutex;
    std::map<int, Fault> faults;
    int nextNumber = 1;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
