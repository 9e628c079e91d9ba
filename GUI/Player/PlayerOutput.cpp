// SPDX-License-Identifier: MIT
#include "GUI/Player/PlayerOutput.h"

#include <QStringList>

#include <algorithm>
#include <cstring>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

using Kind = PlayerEvent::Kind;

bool isSpace(char byte)
{
    constexpr char nextLine = '\x85';
    constexpr char noBreakSpace = '\xa0';
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == nextLine ||
           byte == noBreakSpace;
}

/// A piece of the read, in place: most lines say "frame", and those need no copy.
struct Slice {
    const char *begin;
    const char *end;

    bool operator==(const char *word) const
    {
        return static_cast<std::size_t>(end - begin) == std::strlen(word) &&
               std::equal(begin, end, word);
    }
    QString text() const { return QString::fromLatin1(begin, static_cast<int>(end - begin)); }
};

Slice trimmed(Slice slice)
{
    while (slice.begin != slice.end && isSpace(*slice.begin))
        ++slice.begin;
    while (slice.begin != slice.end && isSpace(slice.end[-1]))
        --slice.end;
    return slice;
}

PlayerEvent badLine(const Slice &line)
{
    PlayerEvent event;
    event.text = line.text();
    return event;
}

PlayerEvent sizeEvent(const Slice &line)
{
    const QStringList tokens = line.text().split(QLatin1Char(' '));
    if (tokens.size() < 3)
        return badLine(line);
    PlayerEvent event;
    event.kind = Kind::Size;
    event.width = tokens.at(1).toInt();
    event.height = tokens.at(2).toInt();
    return event;
}

PlayerEvent textEvent(Kind kind, const Slice &line)
{
    const QStringList tokens = line.text().split(QLatin1Char(' '));
    if (tokens.size() < 2)
        return badLine(line);
    PlayerEvent event;
    event.kind = kind;
    event.text = tokens.at(1);
    return event;
}

void parseLine(const Slice &line, PlayerOutput &output)
{
    const Slice word{line.begin, std::find(line.begin, line.end, ' ')};
    if (word == "frame")
        ++output.frames;
    else if (word == "size")
        output.events.append(sizeEvent(line));
    else if (word == "state")
        output.events.append(textEvent(Kind::State, line));
    else if (word == "time")
        output.events.append(textEvent(Kind::Position, line));
}

} // namespace

PlayerOutput PlayerOutput::parse(const QByteArray &read)
{
    PlayerOutput output;
    const char *end = std::find(read.begin(), read.end(), '\0');
    for (const char *begin = read.begin(); begin != end;) {
        const char *lineEnd = std::find(begin, end, '\n');
        parseLine(trimmed({begin, lineEnd}), output);
        begin = lineEnd == end ? end : lineEnd + 1;
    }
    return output;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
