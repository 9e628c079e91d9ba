// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "demo/ServiceWords.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// The requests received. Counts are exact; of the requests themselves the newest are kept.
class RequestLog
{
public:
    void add(const HttpRequest &request);
    void clear();
    /// `{count, requests}` of those with `path`; an empty path means all.
    nlohmann::json describe(const std::string &path) const;

private:
    struct Entry {
        std::int64_t timeMs;
        HttpRequest request;
    };

    mutable std::mutex mutex;
    std::deque<Entry> entries;
    std::map<std::string, std::int64_t> counts;
};

} // namespace ZorvaneDemo
