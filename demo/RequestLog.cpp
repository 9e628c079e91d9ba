// SPDX-License-Identifier: MIT
#include "demo/RequestLog.h"

#include <cstddef>

#include "service/LocalTime.h"

namespace ZorvaneDemo {

namespace {

constexpr std::size_t keptRequests = 5000;
constexpr std::size_t keptBodyBytes = std::size_t(256) * 1024;

} // namespace

void RequestLog::add(const HttpRequest &request)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++counts[request.path];
    entries.push_back({nowMs(), request});
    if (entries.back().request.body.size() > keptBodyBytes)
        entries.back().request.body.resize(keptBodyBytes);
    if (entries.size() > keptRequests)
        entries.pop_front();
}

void RequestLog::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    entries.clear();
    counts.clear();
}

nlohmann::json RequestLog::describe(const std::string &path) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::int64_t count = 0;
    for (const auto &[key, value] : counts)
        count += path.empty() || key == path ? value : 0;
    auto list = nlohmann::json::array();
    for (const Entry &entry : entries) {
        const HttpRequest &request = entry.request;
        if (!path.empty() && request.path != path)
            continue;
        auto headers = nlohmann::json::object();
        for (const auto &[key, value] : request.headers)
            headers[key] = value;
        list.push_back({{"time", entry.timeMs},
                        {"listener", request.listener},
                        {"method", request.method},
                        {"path", request.path},
                        {"query", request.query},
                        {"headers", headers},
                        {"body", request.body}});
    }
    return {{"count", count}, {"requests", list}};
}

} // namespace ZorvaneDemo
