// SPDX-License-Identifier: MIT
#include "companion/export/Exporter.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "companion/StreamInput.h"
#include "companion/export/ExportOutput.h"
#include "companion/export/FormatProbe.h"
#include "companion/export/TargetFile.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::milliseconds;

/// A stream may be so much shorter than what is told to be recorded; else it has broken off.
constexpr auto smallShortfall = milliseconds(1000);
constexpr int shortfallDivisor = 20;

/// A server that sends so much more than the whole fragment doesn't know its end.
constexpr auto longestOverrun = milliseconds(10'000);

constexpr int wholePercent = 100;
constexpr int percentWhileCopying = 99;

std::string nameOf(AVCodecID codec)
{
    return avcodec_get_name(codec);
}

void noteMissingSound(AVCodecID codec)
{
    std::fprintf(stderr, "vlc-stream: the file gets no sound: it can't hold this %s\n",
                 nameOf(codec).c_str());
}

CodecParametersHandle copyOf(const AVCodecParameters &parameters)
{
    CodecParametersHandle copy(avcodec_parameters_alloc());
    if (copy && avcodec_parameters_copy(copy.get(), &parameters) < 0)
        copy.reset();
    return copy;
}

} // namespace

Exporter::Exporter(const ExportArguments &exportArguments, TargetFile &targetFile,
                   ExportOutput &exportOutput)
    : arguments(exportArguments)
    , file(targetFile)
    , output(exportOutput)
    , timeline(arguments.recorded, arguments.silence)
    , writer(file, arguments.container)
{
}

bool Exporter::run()
{
    return open() && copyToEnd() && finish();
}

bool Exporter::open()
{
    stallWatch.restart(now());
    pictureWatch.restart(now());
    input = openStream(arguments.url, std::string(), 0, {&Exporter::interruptWhenStalled, this});
    return input || fail("the server gives no stream");
}

bool Exporter::copyToEnd()
{
    while (!isBeyondFragment()) {
        PacketHandle packet(av_packet_alloc());
        if (!packet)
            return fail("no memory");
        if (av_read_frame(input.get(), packet.get()) < 0)
            return isEndOfStream(*input->pb) || fail("the stream broke");
        if (!takePacket(std::move(packet)))
            return false;
    }
    return true;
}

bool Exporter::isBeyondFragment() const
{
    return arguments.silence &&
           timeline.end() > arguments.recorded + *arguments.silence + longestOverrun;
}

bool Exporter::takePacket(PacketHandle packet)
{
    if (packet->flags & AV_PKT_FLAG_CORRUPT) {
        torn = true;
        return true;
    }
    const AVStream &stream = firstStreamLike(*input, *input->streams[packet->stream_index]);
    av_packet_rescale_ts(packet.get(), stream.time_base, millisecondBase);
    if (packet->size <= 0 || !completeTimes(*packet))
        return true;
    chooseStream(stream, *packet);
    if (video && video != &stream && stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
        return fail("the video changes to " + nameOf(stream.codecpar->codec_id));
    if (&stream != video && &stream != sound)
        return true;

    const auto kind = &stream == video ? ExportTimeline::Video : ExportTimeline::Sound;
    if (kind == ExportTimeline::Video)
        pictureWatch.restart(now());
    const int64_t delay = packet->pts - packet->dts;
    packet->dts = timeline.place(kind, packet->dts);
    packet->pts = packet->dts + delay;
    packet->duration = timeline.step().count();
    return takeSample({kind, std::move(packet)});
}

/// The file begins with a key frame, and its sound with the first one after that.
void Exporter::chooseStream(const AVStream &stream, const AVPacket &packet)
{
    const AVMediaType type = stream.codecpar->codec_type;
    if (!video && type == AVMEDIA_TYPE_VIDEO && packet.flags & AV_PKT_FLAG_KEY)
        video = &stream;
    if (video && !sound && type == AVMEDIA_TYPE_AUDIO)
        sound = &stream;
}

bool Exporter::takeSample(ExportSample sample)
{
    if (begun)
        return writeSample(std::move(sample));
    beginning.add(std::move(sample));
    return !beginning.isEnough(timeline.end()) || beginFile();
}

bool Exporter::beginFile()
{
    if (!video)
        return fail("the stream has no video");
    const AVCodecID codec = video->codecpar->codec_id;
    const CodecParametersHandle videoFormat = copyOf(*video->codecpar);
    if (!videoFormat || !writer.takes(codec))
        return fail(arguments.container + " takes no " + nameOf(codec));
    if (!completeFormat(*videoFormat, beginning.packets(ExportTimeline::Video)))
        return fail("no picture can be decoded");

    CodecParametersHandle soundFormat = sound ? copyOf(*sound->codecpar) : nullptr;
    if (soundFormat && !hasUsableSound(*soundFormat))
        soundFormat.reset();
    begun = writer.begin(*videoFormat, soundFormat.get(), beginning.pictureSlot());
    if (!begun && soundFormat)
        begun = writer.begin(*videoFormat, nullptr, beginning.pictureSlot());
    if (!begun)
        return fail("the file can't be begun");
    if (sound && !writer.hasSound())
        noteMissingSound(sound->codecpar->codec_id);

    for (ExportSample &sample : beginning.take()) {
        if (!writeSample(std::move(sample)))
            return false;
    }
    return true;
}

bool Exporter::hasUsableSound(AVCodecParameters &format) const
{
    return writer.takes(format.codec_id) &&
           completeFormat(format, beginning.packets(ExportTimeline::Sound));
}

bool Exporter::writeSample(ExportSample sample)
{
    if (sample.kind == ExportTimeline::Sound)
        return writer.writeSound(std::move(sample.packet)) || fail("the sound can't be written");
    if (!writer.writeVideo(std::move(sample.packet)))
        return fail("the video can't be written");
    const int64_t percent = timeline.end() * wholePercent / arguments.recorded;
    output.percent(static_cast<int>(std::min<int64_t>(percent, percentWhileCopying)));
    return true;
}

bool Exporter::finish()
{
    if (!begun && !beginFile())
        return false;
    const milliseconds shortfall = arguments.recorded - timeline.end();
    const milliseconds usual = arguments.recorded / shortfallDivisor;
    if (shortfall > (torn ? smallShortfall : std::max(smallShortfall, usual)))
        return fail("the stream ended too early");
    if (!writer.end() || !file.finish())
        return fail("the file can't be completed");
    output.percent(wholePercent);
    return true;
}

bool Exporter::fail(const std::string &what)
{
    errorText = file.error().empty() ? what : what + ", " + file.error();
    return false;
}

StallWatch::Time Exporter::now()
{
    const auto sinceBegin = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<StallWatch::Time>(sinceBegin);
}

/// The network layer asks this before each look for data.
int Exporter::interruptWhenStalled(void *exporter)
{
    return static_cast<Exporter *>(exporter)->isStalled();
}

bool Exporter::isStalled()
{
    const StallWatch::Time present = now();
    if (input)
        stallWatch.look(input->pb->bytes_read, present);
    return stallWatch.isOver(present) || pictureWatch.isOver(present);
}

} // namespace Companion
} // namespace ZorvaneClient
