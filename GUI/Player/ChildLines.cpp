// SPDX-License-Identifier: MIT
#include "GUI/Player/ChildLines.h"

#include <QString>

#include <algorithm>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

bool isBlank(char byte)
{
    return QChar::isSpace(static_cast<uchar>(byte));
}

QLatin1String trimmed(const char *begin, const char *end)
{
    while (begin != end && isBlank(*begin))
        ++begin;
    while (begin != end && isBlank(end[-1]))
        --end;
    return QLatin1String(begin, end);
}

} // namespace

QVector<QLatin1String> childLines(const QByteArray &read)
{
    QVector<QLatin1String> lines;
    const char *end = std::find(read.begin(), read.end(), '\0');
    for (const char *begin = read.begin(); begin != end;) {
        const char *lineEnd = std::find(begin, end, '\n');
        lines.append(trimmed(begin, lineEnd));
        begin = lineEnd == end ? end : lineEnd + 1;
    }
    return lines;
}

QLatin1String firstWord(QLatin1String line)
{
    return QLatin1String(line.begin(), std::find(line.begin(), line.end(), ' '));
}

QStringList wordsOf(QLatin1String line)
{
    return QString(line).split(QLatin1Char(' '));
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
