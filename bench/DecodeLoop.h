// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace ZorvaneClient {
namespace Bench {

/// Stream: 25 pictures a second, as a player gets them. FlatOut: one after the other.
enum class Pace { Stream, FlatOut };

constexpr int measuredPictures = 200;

/// Processor milliseconds for each picture of the file after the first, up to `measuredPictures`
/// of them, of a loop that only decodes: the mean of so many processes at the same time. 0 when
/// the file can't be decoded.
double decodeMilliseconds(const QByteArray &path, Pace pace, int processes = 1);

} // namespace Bench
} // namespace ZorvaneClient
