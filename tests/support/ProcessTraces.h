// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// What tiles and their children could leave behind in this process, at one moment.
struct ProcessTraces {
    static ProcessTraces now()
    {
        ProcessTraces traces;
        // Links to pipes and sockets point nowhere, and count as system files.
        const auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
        traces.descriptors = int(QDir("/proc/self/fd").entryList(all).size());
        traces.mappings = int(contentOf("/proc/self/maps").count("zorvane-player-"));
        traces.files = int(QDir::temp().entryList({"zorvane-player-*"}).size());
        const QStringList processes = QDir("/proc").entryList(QDir::Dirs);
        for (const QString &process : processes)
            traces.children += statusOf(process).value(1).toLongLong() == ::getpid();
        return traces;
    }

    /// In words, to compare and to read.
    QString text() const
    {
        const QString words = "%1 descriptors, %2 mappings, %3 files, %4 children";
        return words.arg(descriptors).arg(mappings).arg(files).arg(children);
    }

    /// Empty if it can't be read.
    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// What the system tells of a process from its state on; the name before that may hold
    /// blanks and brackets.
    static QList<QByteArray> statusOf(const QString &process)
    {
        const QByteArray status = contentOf("/proc/" + process + "/stat");
        return status.mid(status.lastIndexOf(')') + 2).split(' ');
    }

    int descriptors = 0;
    int mappings = 0; ///< of frame files
    int files = 0;    ///< frame files in the folder for temporary files
    int children = 0; ///< also those that have ended and were not waited for
};

inline qint64 residentBytes()
{
    const QByteArray pages = ProcessTraces::contentOf("/proc/self/statm").split(' ').value(1);
    return pages.toLongLong() * ::sysconf(_SC_PAGESIZE);
}

} // namespace ZorvaneClient::Tests
