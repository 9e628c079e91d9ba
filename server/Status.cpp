// SPDX-License-Identifier: MIT
#include "server/Status.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "server/UtcTime.h"

namespace ZorvaneServer {

namespace {

using Row = std::vector<std::string>;

constexpr std::size_t leftColumns = 2; ///< the others are numbers
constexpr char gap[] = "   ";

template <typename... Values>
std::string formatted(const char *format, Values... values)
{
    char text[100];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string localTime(std::int64_t momentMs)
{
    const std::time_t seconds = momentMs / secondMs;
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[sizeof "2026-11-22 13:40:11"];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

std::string duration(std::int64_t lengthMs)
{
    const long long seconds = lengthMs / secondMs;
    constexpr long long hour = 3600;
    constexpr long long minute = 60;
    return formatted("%lld:%02lld:%02lld", seconds / hour, seconds % hour / minute,
                     seconds % minute);
}

std::string gigabytes(std::int64_t bytes)
{
    return formatted("%.1f GB", static_cast<double>(bytes) / 1e9);
}

Row rowOf(const Status::Stream &stream)
{
    const StreamMeter::Reading &now = stream.reading;
    const std::string name =
        stream.id.quality == Quality::Main ? stream.id.camera : stream.id.text();
    Row row{name, now.connectedMs ? localTime(*now.connectedMs) : "not connected"};
    row.push_back(now.connectedMs ? formatted("%.1f", now.picturesPerSecond) : "-");
    row.push_back(now.connectedMs ? formatted("%.0f", now.kilobitsPerSecond) : "-");
    row.push_back(duration(stream.recordedMs));
    row.push_back(std::to_string(stream.dropped));
    return row;
}

/// Letters, for what is to stand below each other.
std::size_t widthOf(const std::string &text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0u) != 0x80u;
    }));
}

std::string table(const std::vector<Row> &rows)
{
    Row lines(rows.size());
    for (std::size_t column = 0; column < rows.front().size(); ++column) {
        std::size_t widest = 0;
        for (const Row &row : rows)
            widest = std::max(widest, widthOf(row[column]));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::string &cell = rows[i][column];
            const std::string padding(widest - widthOf(cell), ' ');
            lines[i] +=
                (column == 0 ? "" : gap) + (column < leftColumns ? cell + padding : padding + cell);
        }
    }
    std::string text;
    for (const std::string &line : lines)
        text += line + '\n';
    return text;
}

} // namespace

std::string Status::text() const
{
    std::vector<Row> rows{
        {"camera", "connected since", "pictures/s", "kbit/s", "recorded", "dropped"}};
    for (const Stream &stream : streams)
        rows.push_back(rowOf(stream));
    std::string text = table(rows) + "\narchive " + archiveFolder + ": " +
                       std::to_string(segments) + " segments, " + gigabytes(room.freeBytes) +
                       " of " + gigabytes(room.totalBytes) + " left\n";
    if (!isWritten)
        text += "It can't be written at present; the program's log says why.\n";
    return text;
}

} // namespace ZorvaneServer
