// SPDX-License-Identifier: MIT
#include "tests/companion/Clips.h"

#include "tests/support/Test.h"

#include <cmath>

namespace ZorvaneClient::Tests {
namespace Clips {

namespace {

constexpr int colorTolerance = 40;
/// Luma of the first picture of `counting()` and how much each further one is brighter.
constexpr int firstLuma = 20;
constexpr int lumaStep = 2;

QStringList source(const QString &graph)
{
    return {"-f"_s, "lavfi"_s, "-i"_s, graph};
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

QStringList length(int milliseconds)
{
    return {"-t"_s, QString::number(milliseconds / 1000.0)};
}

QStringList encoder(Codec codec)
{
    switch (codec) {
    case Codec::H264:
        return words("-c:v libx264 -preset ultrafast -tune zerolatency -crf 12 -g 25");
    case Codec::Flv:
        return words("-c:v flv1 -q:v 2 -g 25");
    case Codec::Mpeg4:
        return words("-c:v mpeg4 -strict -1 -q:v 2 -g 25 -flags:v -global_header");
    }
    return {};
}

QString quartersGraph(QSize size)
{
    return "color=c=red:s=%1x%2:r=25,format=rgb24,"
           "drawbox=x=iw/2:y=0:w=iw:h=ih/2:c=lime:t=fill,"
           "drawbox=x=0:y=ih/2:w=iw/2:h=ih:c=blue:t=fill,"
           "drawbox=x=iw/2:y=ih/2:w=iw:h=ih:c=white:t=fill"_s.arg(size.width())
               .arg(size.height());
}

bool isNear(QColor a, QColor b)
{
    return qAbs(a.red() - b.red()) <= colorTolerance &&
           qAbs(a.green() - b.green()) <= colorTolerance &&
           qAbs(a.blue() - b.blue()) <= colorTolerance;
}

} // namespace

FlvClip quarters(QSize size, int milliseconds, Codec codec, const QStringList &more)
{
    const QStringList format =
        more.contains("-pix_fmt"_s) ? QStringList() : words("-pix_fmt yuv420p");
    return FlvClip::make(source(quartersGraph(size)) + encoder(codec) + format + more +
                         length(milliseconds));
}

FlvClip counting(int milliseconds)
{
    const QString graph = "color=c=black:s=160x96:r=25,format=yuv420p,"
                          "geq=lum=%1+%2*mod(N\\,%3):cb=128:cr=128"_s.arg(firstLuma)
                              .arg(lumaStep)
                              .arg(maxCount);
    return FlvClip::make(
        source(graph) +
        words("-c:v libx264 -preset ultrafast -tune zerolatency -qp 4 -sc_threshold 0 -g 25") +
        length(milliseconds));
}

FlvClip withTone(int milliseconds, const QString &audioCodec)
{
    return FlvClip::make(source(quartersGraph(QSize(160, 96))) +
                         source("sine=frequency=440:sample_rate=44100"_s) + encoder(Codec::H264) +
                         words("-pix_fmt yuv420p -ar 44100") + QStringList{"-c:a"_s, audioCodec} +
                         length(milliseconds));
}

FlvClip toneOnly(int milliseconds)
{
    return FlvClip::make(source("sine=frequency=440:sample_rate=44100"_s) +
                         words("-ar 44100 -c:a libmp3lame") + length(milliseconds));
}

QString faultInQuarters(const QImage &picture)
{
    if (picture.isNull())
        return "no picture"_s;
    const struct {
        double x;
        double y;
        QColor color;
    } quarters[] = {{0.25, 0.25, QColor(255, 0, 0)},
                    {0.75, 0.25, QColor(0, 255, 0)},
                    {0.25, 0.75, QColor(0, 0, 255)},
                    {0.75, 0.75, QColor(255, 255, 255)}};
    for (const auto &quarter : quarters) {
        const QPoint point(static_cast<int>(picture.width() * quarter.x),
                           static_cast<int>(picture.height() * quarter.y));
        const QColor found = picture.pixelColor(point);
        if (!isNear(found, quarter.color)) {
            return "%1,%2 is %3 and not %4"_s.arg(point.x()).arg(point.y()).arg(
                found.name(), quarter.color.name());
        }
    }
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) != 255)
                return "alpha at %1,%2"_s.arg(x).arg(y);
        }
    }
    return QString();
}

int countIn(const QImage &picture)
{
    if (picture.isNull())
        return -1;
    const int gray = qGreen(picture.pixel(picture.width() / 2, picture.height() / 2));
    const double luma = 16 + gray * 219.0 / 255.0;
    return static_cast<int>(std::lround((luma - firstLuma) / lumaStep));
}

} // namespace Clips
} // namespace ZorvaneClient::Tests
