// SPDX-License-Identifier: MIT
#include "companion/AudioOutput.h"

#include "companion/AudioLibrary.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr Uint16 deviceBufferFrames = 1024;
constexpr size_t bytesPerFrame = AudioOutput::channels * sizeof(int16_t);
constexpr int64_t microsecondsPerSecond = 1'000'000;

} // namespace

AudioOutput::AudioOutput() = default;

AudioOutput::~AudioOutput()
{
    close();
}

bool AudioOutput::open(int sampleRate)
{
    if (device && rate == sampleRate)
        return true;
    if (failed)
        return false;
    close();
    if (!library)
        library = std::make_unique<AudioLibrary>();
    if (library->isUsable()) {
        SDL_AudioSpec wanted = {};
        wanted.freq = sampleRate;
        wanted.format = AUDIO_S16SYS;
        wanted.channels = channels;
        wanted.samples = deviceBufferFrames;
        device = library->openDevice(nullptr, 0, &wanted, nullptr, 0);
    }
    failed = device == 0;
    if (failed)
        return false;
    rate = sampleRate;
    library->pauseDevice(device, 0);
    return true;
}

void AudioOutput::close()
{
    if (device)
        library->closeDevice(device);
    device = 0;
    failed = false;
    if (library && !library->isUsable())
        library.reset();
}

void AudioOutput::play(const std::vector<int16_t> &samples)
{
    if (device) {
        library->queueAudio(device, samples.data(),
                            static_cast<Uint32>(samples.size() * sizeof(int16_t)));
    }
}

void AudioOutput::playSilence(std::chrono::microseconds length)
{
    const auto frames = static_cast<size_t>(length.count() * rate / microsecondsPerSecond);
    play(std::vector<int16_t>(frames * channels));
}

std::chrono::microseconds AudioOutput::queued() const
{
    if (!device)
        return {};
    const int64_t frames = library->queuedSize(device) / bytesPerFrame;
    return std::chrono::microseconds(frames * microsecondsPerSecond / rate);
}

} // namespace Companion
} // namespace ZorvaneClient
