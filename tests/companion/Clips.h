// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/support/FlvClip.h"

class QImage;

namespace ZorvaneClient::Tests {

/// Clips of 25 pictures a second that say what they show.
namespace Clips {

enum class Codec { H264, Flv, Mpeg4 };

/// Four quarters: red, green; blue, white.
FlvClip quarters(QSize size, int milliseconds, Codec codec = Codec::H264,
                 const QStringList &more = {});
/// Each picture is one even gray, brighter with each picture, so that it tells its number.
FlvClip counting(int milliseconds);
constexpr int maxCount = 100;
/// Quarters with a tone of 440 Hz.
FlvClip withTone(int milliseconds, const QString &audioCodec);
FlvClip toneOnly(int milliseconds);

/// Empty if the picture shows the four quarters in their places, else what is wrong.
QString faultInQuarters(const QImage &picture);
/// Number of the picture of `counting()`, by its middle.
int countIn(const QImage &picture);

} // namespace Clips

} // namespace ZorvaneClient::Tests
