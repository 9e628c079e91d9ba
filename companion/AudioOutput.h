// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace ZorvaneClient {
namespace Companion {

class AudioLibrary;

/// The sound device, for interleaved stereo of 16-bit samples. The audio library is loaded
/// and the device opened with the first sound; without either, sounds are swallowed.
class AudioOutput
{
public:
    static constexpr int channels = 2;

    AudioOutput();
    ~AudioOutput();
    AudioOutput(const AudioOutput &) = delete;
    AudioOutput &operator=(const AudioOutput &) = delete;

    /// Opens the device for that sample rate, unless it is. A failure is remembered until
    /// `close()`. False if there is no sound.
    bool open(int sampleRate);
    void close();

    void play(const std::vector<int16_t> &samples);
    void playSilence(std::chrono::microseconds length);
    /// What was given and isn't heard yet.
    std::chrono::microseconds queued() const;

private:
    std::unique_ptr<AudioLibrary> library;
    uint32_t device = 0;
    int rate = 0;
    bool failed = false;
};

} // namespace Companion
} // namespace ZorvaneClient
