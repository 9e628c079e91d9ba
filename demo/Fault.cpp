// SPDX-License-Identifier: MIT
#include "demo/Fault.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ZorvaneDemo {

namespace {

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

nlohmann::json Fault::toJson() const
{
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [this](const auto &entry) { return entry.second == kind; });
    return {{"kind", found->first}, {"listener", listener}, {"route", route},
            {"server", server},     {"camera", camera},     {"times", times},
            {"value", value},       {"after", after},       {"location", location}};
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

bool Fault::changesBytes() const
{
    return kind == Kind::Close || kind == Kind::Stall || kind == Kind::Truncate ||
           kind == Kind::Garble || kind == Kind::Slow;
}

} // namespace ZorvaneDemo
