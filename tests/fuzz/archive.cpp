// SPDX-License-Identifier: MIT
#include "API/ArchiveRecord.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::API;

/// Every record lies within the day that was asked for, also where that has no midnight.
void tryInput(const QByteArray &input)
{
    const QVariant reply = jsonOf(input);
    QList<QDate> days = recordCountsByDay(reply).keys();
    days.append(QDate(2026, 3, 29));
    for (const QDate day : days) {
        for (const ArchiveRecord &record : archiveRecordsOfDay(reply, day)) {
            check(record.start.date() == day && record.end.date() == day);
            check(record.start < record.end);
        }
    }
}
