// SPDX-License-Identifier: MIT
#include "GUI/Player/PlayerOutput.h"

#include "GUI/Player/ChildLines.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

using Kind = PlayerEvent::Kind;

PlayerEvent eventOf(Kind kind, QLatin1String line)
{
    const QStringList words = wordsOf(line);
    PlayerEvent event;
    if (words.size() < (kind == Kind::Size ? 3 : 2)) {
        event.text = line;
        return event;
    }
    event.kind = kind;
    if (kind == Kind::Size)
        event.size = QSize(words.at(1).toInt(), words.at(2).toInt());
    else if (kind == Kind::Position)
        event.position = words.at(1).toInt();
    else
        event.text = words.at(1);
    return event;
}

} // namespace

PlayerOutput PlayerOutput::parse(const QByteArray &read)
{
    PlayerOutput output;
    const QVector<QLatin1String> lines = childLines(read);
    for (const QLatin1String line : lines) {
        const QLatin1String word = firstWord(line);
        if (word == QLatin1String("frame"))
            ++output.frames;
        else if (word == QLatin1String("size"))
            output.events.append(eventOf(Kind::Size, line));
        else if (word == QLatin1String("state"))
            output.events.append(eventOf(Kind::State, line));
        else if (word == QLatin1String("time"))
            output.events.append(eventOf(Kind::Position, line));
    }
    return output;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
