// SPDX-License-Identifier: MIT
#include "companion/export/ExportArguments.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "companion/StreamUrl.h"

namespace ZorvaneClient {
namespace Companion {

const std::string exportWord = "export";

namespace {

using std::chrono::milliseconds;

/// Longer than any archive, and far from the end of the numbers.
constexpr int64_t maxMilliseconds = int64_t(1) << 50;

std::optional<int64_t> parseNumber(const std::string &text)
{
    int64_t number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0 || number > maxMilliseconds)
        return std::nullopt;
    return number;
}

std::optional<int64_t> queryNumber(const std::string &url, const std::string &name)
{
    const auto item = queryItem(url, name);
    return item ? parseNumber(*item) : std::nullopt;
}

std::optional<milliseconds> silenceIn(const std::string &url, milliseconds recorded)
{
    const auto start = queryNumber(url, "startTime");
    const auto end = queryNumber(url, "endTime");
    if (!start || !end || *end < *start)
        return std::nullopt;
    return std::max(milliseconds(*end - *start) - recorded, milliseconds(0));
}

bool isFilePath(const std::string &path)
{
    return path.size() > 1 && path.front() == '/' && path.back() != '/';
}

} // namespace

std::optional<ExportArguments> parseExportArguments(const std::vector<std::string> &arguments)
{
    if (arguments.size() != 4 || !hasScheme(arguments[0]) || !isFilePath(arguments[3]))
        return std::nullopt;
    if (arguments[1] != "mp4" && arguments[1] != "avi")
        return std::nullopt;
    const auto recorded = parseNumber(arguments[2]);
    if (recorded.value_or(0) <= 0)
        return std::nullopt;

    ExportArguments parsed;
    parsed.url = requestSafe(arguments[0]);
    parsed.container = arguments[1];
    parsed.recorded = milliseconds(*recorded);
    parsed.path = arguments[3];
    parsed.silence = silenceIn(parsed.url, parsed.recorded);
    return parsed;
}

} // namespace Companion
} // namespace ZorvaneClient
