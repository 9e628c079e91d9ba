// SPDX-License-Identifier: MIT
#include "server/Probe.h"

#include <cstdarg>
#include <cstdio>

#include "server/CaptureInput.h"
#include "server/Log.h"
#include "server/PacketMaker.h"
#include "server/WallClock.h"

namespace ZorvaneServer {

using namespace std::chrono_literals;
using std::chrono::microseconds;

namespace {

constexpr microseconds patience = 10s;
constexpr microseconds watched = 6s;

struct Counts {
    int pictures = 0;
    int keyPictures = 0;
    std::int64_t bytes = 0;
    microseconds first{0};
    microseconds latest{0};
    microseconds firstKey{0};
    microseconds latestKey{0};

    void take(const MediaPacket &picture, microseconds now)
    {
        if (pictures++ == 0)
            first = now;
        latest = now;
        bytes += static_cast<std::int64_t>(picture.data.size());
        if (!picture.isKey)
            return;
        if (keyPictures++ == 0)
            firstKey = now;
        latestKey = now;
    }
};

double seconds(microseconds length)
{
    return std::chrono::duration<double>(length).count();
}

std::string line(const char *format, ...) __attribute__((format(printf, 1, 2)));
std::string line(const char *format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return std::string(text) + '\n';
}

std::string describeVideo(const AVStream &video, const PacketMaker &maker)
{
    const AVCodecID codec = video.codecpar->codec_id;
    if (!maker.format())
        return line("video     %s", avcodec_get_name(codec));
    const Bytes &setup = maker.format()->videoSetup;
    const char *profile = avcodec_profile_name(codec, setup[1]);
    return line("video     H.264 %s, level %.1f, %dx%d", profile ? profile : "", setup[3] / 10.0,
                maker.format()->width, maker.format()->height);
}

std::string describePictures(const Counts &counts)
{
    std::string text;
    const double length = seconds(counts.latest - counts.first);
    if (length > 0)
        text += line("pictures  %.1f a second, %.0f kbit/s", (counts.pictures - 1) / length,
                     double(counts.bytes) * 8 / 1000 / length);
    if (counts.keyPictures > 1)
        text += line("          a key picture every %.1f s",
                     seconds(counts.latestKey - counts.firstKey) / (counts.keyPictures - 1));
    else
        text += line("          key pictures are more than %.0f s apart", length);
    return text;
}

std::string describeSound(const AVStream *sound)
{
    if (!sound)
        return line("sound     none");
    const AVCodecParameters &parameters = *sound->codecpar;
    const bool recordable = PacketMaker::soundCodecOf(*sound) != SoundCodec::None;
    return line("sound     %s, %d Hz, %d channels%s", avcodec_get_name(parameters.codec_id),
                parameters.sample_rate, parameters.ch_layout.nb_channels,
                recordable ? "" : ", which isn't recorded");
}

} // namespace

bool probe(const CameraSource &source, std::string *report)
{
    const microseconds begin = steadyTime();
    Counts counts;
    CaptureInput input(source, [&] {
        return steadyTime() - begin > patience + (counts.pictures > 0 ? watched : 0us);
    });
    *report = line("address   %s", Log::hide(source.url).c_str());
    if (const std::string failure = input.open(); !failure.empty()) {
        *report += line("failed    %s", Log::hide(failure).c_str());
        return false;
    }
    *report += line("opened    after %.2f s", seconds(steadyTime() - begin));
    PacketMaker maker;
    std::string objection;
    const AVStream *video = nullptr;
    while (counts.pictures == 0 || counts.latest - counts.first < watched) {
        const AVPacket *packet = input.read();
        if (!packet)
            break;
        video = input.video();
        if (!video || packet->stream_index != video->index)
            continue;
        objection = PacketMaker::objection(*video);
        if (!objection.empty())
            break;
        if (const auto picture = maker.picture(*packet, *video, input.sound()))
            counts.take(*picture, steadyTime());
    }
    if (!video) {
        *report += line("failed    no pictures: %s", Log::hide(input.failure()).c_str());
        return false;
    }
    *report += describeVideo(*video, maker);
    if (counts.pictures > 0)
        *report += describePictures(counts);
    *report += describeSound(input.sound());
    if (!objection.empty())
        *report += line("failed    %s", objection.c_str());
    return counts.pictures > 0;
}

} // namespace ZorvaneServer
