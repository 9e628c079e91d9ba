// SPDX-License-Identifier: MIT
#include "API/ArchiveRecord.h"

#include <QDebug>
#include <QTime>

namespace ZorvaneClient {
namespace API {

namespace {

constexpr qint64 millisecondsPerSecond = 1000;

QDateTime beginOfDay(QDate date)
{
    // Not always midnight: in some zones the clock goes forward at that moment.
    return date.startOfDay();
}

QDateTime lastMomentOfDay(QDate date)
{
    return QDateTime(date, QTime(23, 59, 59));
}

/// Times of the service have 32 unsigned bits.
QDateTime localTime(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(static_cast<uint>(seconds));
}

ArchiveRecord readRecord(const QVariantMap &entry)
{
    // The added second is part of how the service's figures are to be taken.
    const qint64 first =
        entry.value(QStringLiteral("startTime")).toLongLong() / millisecondsPerSecond + 1;
    const qint64 length =
        entry.value(QStringLiteral("duration")).toLongLong() / millisecondsPerSecond;
    return {localTime(first), localTime(first + length)};
}

} // namespace

QList<ArchiveRecord> archiveRecordsOfDay(const QVariant &reply, QDate date)
{
    QList<ArchiveRecord> records;
    const QVariantList entries = reply.toList();
    for (const QVariant &entry : entries) {
        ArchiveRecord record = readRecord(entry.toMap());
        if (record.start.date() > date || record.end.date() < date) {
            qWarning() << "Received record with start.date()" << record.start.date() << "end.date()"
                       << record.end.date() << "but current date is" << date;
            continue;
        }
        if (record.start.date() < date)
            record.start = beginOfDay(date);
        if (record.end.date() > date)
            record.end = lastMomentOfDay(date);
        if (record.start < record.end)
            records.append(record);
        else
            qDebug() << "Archive record skipped";
    }
    return records;
}

QMap<QDate, int> recordCountsByDay(const QVariant &reply)
{
    QMap<QDate, int> counts;
    const QVariantList entries = reply.toList();
    for (const QVariant &entry : entries) {
        const QVariantMap map = entry.toMap();
        const QDate day = localTime(map.value(QStringLiteral("date")).toLongLong()).date();
        counts.insert(day, map.value(QStringLiteral("recordsCount")).toInt());
    }
    return counts;
}

uint toEpochSeconds(const QDateTime &time)
{
    return static_cast<uint>(time.toSecsSinceEpoch());
}

uint firstSecondOfDay(QDate date)
{
    return toEpochSeconds(beginOfDay(date));
}

uint lastSecondOfDay(QDate date)
{
    return toEpochSeconds(lastMomentOfDay(date));
}

} // namespace API
} // namespace ZorvaneClient
