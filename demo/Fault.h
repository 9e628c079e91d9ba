// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

#include "demo/ServiceWords.h"
#include "service/Http.h"

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
    std::int64_t value = 0;   ///< bytes a second, milliseconds or status, by kind
    std::int64_t after = 0;   ///< bytes of the body that are let through first
    std::string location;

    /// Nothing when `json` names no known kind.
    static std::optional<Fault> fromJson(const nlohmann::json &json);
    nlohmann::json toJson() const;
    bool matches(const HttpRequest &request) const;
    /// True if it is done to the bytes of the body, on their way.
    bool changesBytes() const;
};

} // namespace ZorvaneDemo
