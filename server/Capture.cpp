// SPDX-License-Identifier: MIT
#include "server/Capture.h"

#include "server/CaptureInput.h"
#include "server/Log.h"
#include "server/WallClock.h"

namespace ZorvaneServer {

using std::chrono::microseconds;

namespace {

std::string soundName(SoundCodec codec)
{
    switch (codec) {
    case SoundCodec::Aac:
        return " with AAC";
    case SoundCodec::Mp3:
        return " with MP3";
    case SoundCodec::ALaw:
    case SoundCodec::MuLaw:
        return " with G.711";
    case SoundCodec::None:
        break;
    }
    return " without sound";
}

std::string describe(const StreamFormat &format)
{
    return std::to_string(format.width) + "x" + std::to_string(format.height) + " H.264" +
           soundName(format.sound);
}

} // namespace

Capture::Capture(std::string streamName, CameraSource cameraSource, Sink receiver)
    : name(std::move(streamName)), source(std::move(cameraSource)), sink(std::move(receiver))
{
    Log::keepSecret(source.url);
}

Capture::~Capture()
{
    stop();
}

void Capture::start()
{
    thread = std::thread([this] { run(); });
}

void Capture::end()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    wake.notify_one();
}

void Capture::stop()
{
    end();
    if (thread.joinable())
        thread.join();
}

bool Capture::isLate() const
{
    return isOver || steadyTime() - lastPicture > pictureLimit;
}

void Capture::nap(std::chrono::seconds length)
{
    std::unique_lock<std::mutex> lock(mutex);
    wake.wait_for(lock, length, [this] { return isOver.load(); });
}

void Capture::run()
{
    while (!isOver) {
        const std::string failure = connection();
        if (isOver)
            break;
        const auto wait = backOff.next();
        if (failure != saidFailure) {
            Log::say(name + ": " + failure + ". It is tried again in " +
                     std::to_string(wait.count()) + " s, and on and on");
        }
        saidFailure = failure;
        nap(wait);
    }
}

/// Why it ended.
std::string Capture::connection()
{
    lastPicture = steadyTime();
    clock = RunClock();
    soundClock = SoundClock();
    CaptureInput input(source, [this] { return isLate(); });
    const std::string failure = input.open();
    if (!failure.empty())
        return isOver || !isLate() ? failure : "no answer";
    PacketMaker maker;
    while (const AVPacket *packet = input.read()) {
        const AVStream *video = input.video();
        if (isLate())
            break;
        if (video && packet->stream_index == video->index) {
            if (std::string reason = PacketMaker::objection(*video); !reason.empty())
                return reason;
            if (!takePicture(input, *packet, maker))
                continue;
            backOff.reset();
            saidFailure.clear();
        } else if (input.sound() && packet->stream_index == input.sound()->index) {
            takeSound(input, *packet, maker);
        }
    }
    if (clock.runs() > 0)
        sink(nullptr);
    earlierRuns += clock.runs();
    return isLate() ? "no pictures came for " + std::to_string(pictureLimit.count()) + " s"
                    : "the connection ended: " + input.failure();
}

bool Capture::takePicture(const CaptureInput &input, const AVPacket &packet, PacketMaker &maker)
{
    const FormatPtr before = maker.format();
    auto picture = maker.picture(packet, *input.video(), input.sound());
    if (!picture || (clock.runs() == 0 && !picture->isKey))
        return false;
    if (maker.format() != before)
        Log::say(name + ": " + describe(*maker.format()));
    lastPicture = steadyTime();
    const auto moment = clock.place({input.stamp(), lastPicture, wallTime(), picture->isKey});
    send(std::move(*picture), moment + input.delay());
    return true;
}

void Capture::takeSound(const CaptureInput &input, const AVPacket &packet, const PacketMaker &maker)
{
    if (clock.runs() == 0)
        return;
    if (auto sound = maker.sound(packet)) {
        const Arrival arrival{input.stamp(), steadyTime(), wallTime()};
        send(std::move(*sound), soundClock.place(arrival, clock));
    }
}

void Capture::send(MediaPacket packet, Arrival::Duration moment)
{
    packet.run = earlierRuns + clock.runs();
    packet.momentMs = moment / std::chrono::milliseconds(1);
    sink(std::make_shared<MediaPacket>(std::move(packet)));
}

} // namespace ZorvaneServer
