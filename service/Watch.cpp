// SPDX-License-Identifier: MIT
#include "service/Watch.h"

#include <utility>

namespace ZorvaneService {

namespace {

constexpr std::chrono::seconds period{1};

} // namespace

Watch::Watch(const RosterSource &source, const Access &rules, HttpRequest of, Access::Need what)
    : roster(source)
    , access(rules)
    , request(std::move(of))
    , need(what)
    , generation(roster.generation())
    , checked(std::chrono::steady_clock::now())
{
}

bool Watch::isDue()
{
    const auto now = std::chrono::steady_clock::now();
    if (generation == roster.generation() && now - checked < period)
        return false;
    generation = roster.generation();
    checked = now;
    return true;
}

} // namespace ZorvaneService
