// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QByteArray;
class QString;

namespace ZorvaneClient {
namespace Bench {

/// Processor time that a process has taken so far; 0 if there is none.
double cpuMillisecondsOf(qint64 pid);

/// What `file` of a process' folder in /proc says of its memory beside `label`; 0 if nothing.
/// `pid` may be "self".
double mebibytesOf(const QString &pid, const char *file, const QByteArray &label);

/// The process that serves the display DISPLAY of this machine; 0 if there is none.
qint64 displayServer();

} // namespace Bench
} // namespace ZorvaneClient
