// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/support/FlvClip.h"

/// Clips of 25 pictures a second that say what they show.
namespace ZorvaneClient::Tests::Clips {

/// Encoders and a further input, as the ffmpeg program names them.
inline const QString h264 =
    "-c:v libx264 -preset ultrafast -tune zerolatency -crf 12 -g 25 -pix_fmt yuv420p"_s;
inline const QString flv = "-c:v flv1 -q:v 2 -g 25 -pix_fmt yuv420p"_s;
inline const QString mpeg4 = "-c:v mpeg4 -strict -1 -q:v 2 -g 25 -flags:v -global_header"_s;
inline const QString tone = "-f lavfi -i sine=frequency=440:sample_rate=44100"_s;

/// `arguments` are those of the ffmpeg program.
inline FlvClip made(const QString &arguments)
{
    return FlvClip::make(arguments.split(' '));
}

/// Four quarters: red, green; blue, white.
inline FlvClip quarters(QSize size, int milliseconds, const QString &encoder = h264)
{
    const QString graph = "-f lavfi -i color=c=red:s=%1x%2:r=25,format=rgb24,"
                          "drawbox=x=iw/2:y=0:w=iw:h=ih/2:c=lime:t=fill,"
                          "drawbox=x=0:y=ih/2:w=iw/2:h=ih:c=blue:t=fill,"
                          "drawbox=x=iw/2:y=ih/2:w=iw:h=ih:c=white:t=fill "_s;
    const QString length = " -t %1ms"_s.arg(milliseconds);
    return made(graph.arg(size.width()).arg(size.height()) + encoder + length);
}

/// Small quarters with a tone of 440 Hz.
inline FlvClip withTone(int milliseconds, const QString &audioCodec)
{
    return quarters(QSize(160, 96), milliseconds, tone + ' ' + h264 + " -c:a " + audioCodec);
}

/// Empty if the picture shows the four quarters in their places, else what is wrong.
inline QString faultInQuarters(const QImage &picture)
{
    if (picture.isNull())
        return "no picture"_s;
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::white};
    for (int i = 0; i < 4; ++i) {
        const QColor found = picture.pixelColor(picture.width() * (1 + 2 * (i % 2)) / 4,
                                                picture.height() * (1 + 2 * (i / 2)) / 4);
        if (qAbs(found.red() - colours[i].red()) > 40 ||
            qAbs(found.green() - colours[i].green()) > 40 ||
            qAbs(found.blue() - colours[i].blue()) > 40)
            return "%1 and not %2"_s.arg(found.name(), colours[i].name());
    }
    const auto *pixels = reinterpret_cast<const QRgb *>(picture.constBits());
    const bool opaque = std::all_of(pixels, pixels + picture.width() * picture.height(),
                                    [](QRgb pixel) { return qAlpha(pixel) == 255; });
    return opaque ? QString() : "not opaque"_s;
}

} // namespace ZorvaneClient::Tests::Clips
