// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <time.h>

namespace ZorvaneClient {
namespace Bench {

/// Stream: 25 pictures a second, as a player gets them. FlatOut: one after the other.
enum class Pace { Stream, FlatOut };

/// Processor milliseconds for each picture of the file after the first, up to 200 of them, of a
/// loop that only decodes, in a process of its own. 0 when the file can't be decoded.
double decodeMilliseconds(const QByteArray &path, Pace pace);

/// Processor time of `clock`.
double millisecondsOf(clockid_t clock);

} // namespace Bench
} // namespace ZorvaneClient
