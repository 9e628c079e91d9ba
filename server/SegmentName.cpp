// SPDX-License-Identifier: MIT
#include "server/SegmentName.h"

#include "server/UtcTime.h"

namespace ZorvaneServer {

namespace {

constexpr std::string_view finishedEnding = ".mkv";
constexpr std::string_view growingEnding = ".part";
// A longer segment can't be: its file would have to grow for a month.
constexpr std::int64_t longestMs = 31 * dayMs;

} // namespace

std::string SegmentName::text() const
{
    std::string name = utcStamp(startMs);
    if (isGrowing())
        return name.append(growingEnding);
    return name.append("+").append(std::to_string(*lengthMs)).append(finishedEnding);
}

std::optional<SegmentName> SegmentName::of(std::string_view fileName)
{
    const auto start = readUtcStamp(fileName.substr(0, utcStampLength));
    if (!start)
        return {};
    fileName.remove_prefix(utcStampLength);
    if (fileName == growingEnding)
        return SegmentName{*start, {}};
    if (fileName.size() < finishedEnding.size() + 2 || fileName.front() != '+' ||
        fileName.substr(fileName.size() - finishedEnding.size()) != finishedEnding)
        return {};
    const auto length = readDigits(fileName.substr(1, fileName.size() - finishedEnding.size() - 1));
    if (!length || *length > longestMs)
        return {};
    return SegmentName{*start, length};
}

} // namespace ZorvaneServer
