// SPDX-License-Identifier: MIT
#include "service/Watch.h"

#include <utility>

#include "service/LocalTime.h"

namespace ZorvaneService {

namespace {

constexpr std::int64_t periodMs = secondMs;

} // namespace

Watch::Watch(const RosterSource &source, const Access &rules, HttpRequest of, Access::Need what)
    : roster(source)
    , access(rules)
    , request(std::move(of))
    , need(what)
    , generation(roster.generation())
    , checkedMs(nowMs())
{
}

bool Watch::isDue()
{
    const std::int64_t now = nowMs();
    if (generation == roster.generation() && now - checkedMs < periodMs)
        return false;
    generation = roster.generation();
    checkedMs = now;
    return true;
}

} // namespace ZorvaneService
