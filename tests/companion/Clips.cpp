// SPDX-License-Identifier: MIT
#include "tests/companion/Clips.h"

#include "tests/support/Test.h"

#include <cmath>

namespace ZorvaneClient::Tests::Clips {

namespace {

constexpr int colorTolerance = 40;
/// Luma of the first picture of `counting()` and how much each further one is brighter.
constexpr int firstLuma = 20;
constexpr int lumaStep = 2;

} // namespace

const QString h264 =
    "-c:v libx264 -preset ultrafast -tune zerolatency -crf 12 -g 25 -pix_fmt yuv420p"_s;
const QString flv = "-c:v flv1 -q:v 2 -g 25 -pix_fmt yuv420p"_s;
const QString mpeg4 = "-c:v mpeg4 -strict -1 -q:v 2 -g 25 -flags:v -global_header"_s;
const QString tone = "-f lavfi -i sine=frequency=440:sample_rate=44100"_s;

FlvClip made(const QString &arguments)
{
    return FlvClip::make(arguments.split(' '));
}

FlvClip quarters(QSize size, int milliseconds, const QString &encoder)
{
    const QString graph = "-f lavfi -i color=c=red:s=%1x%2:r=25,format=rgb24,"
                          "drawbox=x=iw/2:y=0:w=iw:h=ih/2:c=lime:t=fill,"
                          "drawbox=x=0:y=ih/2:w=iw/2:h=ih:c=blue:t=fill,"
                          "drawbox=x=iw/2:y=ih/2:w=iw:h=ih:c=white:t=fill %3 -t %4ms"_s;
    return made(
        graph.arg(size.width()).arg(size.height()).arg(encoder, QString::number(milliseconds)));
}

FlvClip withTone(int milliseconds, const QString &audioCodec)
{
    return quarters(QSize(160, 96), milliseconds, tone + ' ' + h264 + " -c:a " + audioCodec);
}

FlvClip counting(int milliseconds)
{
    const QString graph =
        "-f lavfi -i color=c=black:s=160x96:r=25,format=yuv420p,"
        "geq=lum=%1+%2*mod(N\\,%3):cb=128:cr=128 %4 -qp 4 -sc_threshold 0 -t %5ms"_s;
    return made(graph.arg(firstLuma).arg(lumaStep).arg(maxCount).arg(h264).arg(milliseconds));
}

QString faultInQuarters(const QImage &picture)
{
    if (picture.isNull())
        return "no picture"_s;
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::white};
    for (int i = 0; i < 4; ++i) {
        const QColor found = picture.pixelColor(picture.width() * (1 + 2 * (i % 2)) / 4,
                                                picture.height() * (1 + 2 * (i / 2)) / 4);
        if (qAbs(found.red() - colours[i].red()) > colorTolerance ||
            qAbs(found.green() - colours[i].green()) > colorTolerance ||
            qAbs(found.blue() - colours[i].blue()) > colorTolerance)
            return "%1 and not %2"_s.arg(found.name(), colours[i].name());
    }
    const auto *pixels = reinterpret_cast<const QRgb *>(picture.constBits());
    const bool opaque = std::all_of(pixels, pixels + picture.width() * picture.height(),
                                    [](QRgb pixel) { return qAlpha(pixel) == 255; });
    return opaque ? QString() : "not opaque"_s;
}

int countIn(const QImage &picture)
{
    if (picture.isNull())
        return -1;
    const int gray = qGreen(picture.pixel(picture.width() / 2, picture.height() / 2));
    const double luma = 16 + gray * 219.0 / 255.0;
    return static_cast<int>(std::lround((luma - firstLuma) / lumaStep));
}

} // namespace ZorvaneClient::Tests::Clips
