// SPDX-License-Identifier: MIT
#include "GUI/Player/ExportOutput.h"

#include "GUI/Player/ChildLines.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

using Kind = ExportEvent::Kind;

ExportEvent percentEvent(QLatin1String line)
{
    const QStringList words = wordsOf(line);
    if (words.size() < 2)
        return {Kind::Bad, 0, line};
    return {Kind::Percent, words.at(1).toInt(), QString()};
}

const QByteArray complaintPrefix("vlc-stream: ");

} // namespace

QVector<ExportEvent> exportEvents(const QByteArray &read)
{
    QVector<ExportEvent> events;
    bool isDone = false;
    const QVector<QLatin1String> lines = childLines(read);
    for (const QLatin1String line : lines) {
        const QLatin1String word = firstWord(line);
        if (word == QLatin1String("export-start"))
            events.append({Kind::Started, 0, QString()});
        else if (word == QLatin1String("export-percent"))
            events.append(percentEvent(line));
        else if (word == QLatin1String("export-error"))
            events.append({Kind::Error, 0, QString()});
        else if (word == QLatin1String("export-done"))
            isDone = true;
    }
    if (isDone)
        events.append({Kind::Done, 0, QString()});
    return events;
}

QString exportComplaint(const QByteArray &errorOutput)
{
    QByteArray complaint;
    const QList<QByteArray> lines = errorOutput.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(complaintPrefix))
            complaint = line.mid(complaintPrefix.size());
    }
    return QString::fromLocal8Bit(complaint).trimmed();
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
