// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QVariant>

namespace ZorvaneClient {
namespace API {

/// A recorded span, in local time, both ends within one day.
struct ArchiveRecord {
    QDateTime start;
    QDateTime end;
};

/// Reads a reply of `archive/list`: what of its records lies on `date`, in the order of the
/// reply. Both ends come out one second later than the reply has them.
QList<ArchiveRecord> archiveRecordsOfDay(const QVariant &reply, QDate date);

/// Reads a reply of `archive/days`: number of records by local date.
QMap<QDate, int> recordCountsByDay(const QVariant &reply);

/// How the service counts moments: in seconds since the epoch, with 32 unsigned bits.
uint toEpochSeconds(const QDateTime &time);

/// The two ends of a request for whole days, local time, in seconds since the epoch.
uint firstSecondOfDay(QDate date);
uint lastSecondOfDay(QDate date);

} // namespace API
} // namespace ZorvaneClient
