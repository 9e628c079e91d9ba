// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/support/FlvClip.h"

class QImage;

/// Clips of 25 pictures a second that say what they show.
namespace ZorvaneClient::Tests::Clips {

/// Encoders and a further input, as the ffmpeg program names them.
extern const QString h264;
extern const QString flv;
extern const QString mpeg4;
extern const QString tone;

/// `arguments` are those of the ffmpeg program.
FlvClip made(const QString &arguments);
/// Four quarters: red, green; blue, white.
FlvClip quarters(QSize size, int milliseconds, const QString &encoder = h264);
/// Small quarters with a tone of 440 Hz.
FlvClip withTone(int milliseconds, const QString &audioCodec);
/// Each picture is one even gray, brighter with each picture, so that it tells its number.
FlvClip counting(int milliseconds);
constexpr int maxCount = 100;

/// Empty if the picture shows the four quarters in their places, else what is wrong.
QString faultInQuarters(const QImage &picture);
/// Number of the picture of `counting()`, by its middle.
int countIn(const QImage &picture);

} // namespace ZorvaneClient::Tests::Clips
