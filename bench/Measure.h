// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <time.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace ZorvaneClient {
namespace Bench {

/// Processor time of this process, or what else `clock` counts.
inline double cpuMilliseconds(clockid_t clock = CLOCK_PROCESS_CPUTIME_ID)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return time.tv_sec * 1e3 + time.tv_nsec / 1e6;
}

/// How long `work` takes.
inline double millisecondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// The best of some runs, since others share the machine. `prepare` comes before each run
/// and is not measured.
inline double bestMilliseconds(
    int runs, const std::function<void()> &work, const std::function<void()> &prepare = [] {})
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        prepare();
        times.push_back(millisecondsOf(work));
    }
    return *std::min_element(times.begin(), times.end());
}

/// Of an odd number of values.
inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// What `file` of a process' folder in /proc says of its memory beside `label`; 0 if nothing.
inline double mebibytesOf(const QString &pid, const char *file, const QByteArray &label)
{
    QFile content(QStringLiteral("/proc/%1/%2").arg(pid, QLatin1String(file)));
    if (!content.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = content.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(label + ':'))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    }
    return 0;
}

} // namespace Bench
} // namespace ZorvaneClient
