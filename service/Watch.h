// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

#include "service/Access.h"

namespace ZorvaneService {

/// Looks whether a camera may still be seen: when the roster changes, and once a second.
class Watch
{
public:
    Watch(const RosterSource &source, const Access &rules, HttpRequest of, Access::Need what);

    /// True when it is time to look.
    bool isDue();
    bool isAllowed() const { return access.isStillGranted(request, need); }

private:
    const RosterSource &roster;
    const Access &access;
    const HttpRequest request;
    const Access::Need need;
    std::uint64_t generation;
    std::chrono::steady_clock::time_point checked;
};

} // namespace ZorvaneService
