// SPDX-License-Identifier: MIT
#include "tests/support/ProcessTraces.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <unistd.h>

namespace ZorvaneClient {
namespace Tests {

namespace {

const QString frameFilePrefix = QStringLiteral("zorvane-player-");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Field 4 of stat; the name in field 2 may hold blanks and brackets.
QByteArray parentOf(const QString &process)
{
    const QByteArray status =
        contentOf(QStringLiteral("/proc/") + process + QStringLiteral("/stat"));
    return status.mid(status.lastIndexOf(')') + 4).split(' ').first();
}

int childCount()
{
    const QByteArray self = QByteArray::number(static_cast<qint64>(::getpid()));
    int count = 0;
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &process : processes)
        count += parentOf(process) == self ? 1 : 0;
    return count;
}

} // namespace

ProcessTraces ProcessTraces::now()
{
    ProcessTraces traces;
    // Links to pipes and sockets point nowhere, and count as system files.
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    traces.descriptors = static_cast<int>(
        descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
    traces.mappings = static_cast<int>(
        contentOf(QStringLiteral("/proc/self/maps")).count(frameFilePrefix.toLatin1()));
    traces.files =
        static_cast<int>(QDir::temp().entryList({frameFilePrefix + QLatin1Char('*')}).size());
    traces.children = childCount();
    return traces;
}

QString ProcessTraces::text() const
{
    return QStringLiteral("%1 descriptors, %2 mappings, %3 files, %4 children")
        .arg(descriptors)
        .arg(mappings)
        .arg(files)
        .arg(children);
}

qint64 residentBytes()
{
    const QByteArray pages = contentOf(QStringLiteral("/proc/self/statm")).split(' ').value(1);
    return pages.toLongLong() * ::sysconf(_SC_PAGESIZE);
}

} // namespace Tests
} // namespace ZorvaneClient
