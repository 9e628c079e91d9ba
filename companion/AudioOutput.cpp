// SPDX-License-Identifier: MIT
#include "companion/AudioOutput.h"

#include <SDL.h>
#include <dlfcn.h>

namespace ZorvaneClient {
namespace Companion {

namespace {

const char *const libraryName = "libSDL2-2.0.so.0";
constexpr Uint16 deviceBufferFrames = 1024;
constexpr size_t bytesPerFrame = AudioOutput::channels * sizeof(int16_t);
constexpr int64_t microsecondsPerSecond = 1'000'000;

} // namespace

/// SDL, loaded when needed: a muted tile has neither its start-up time nor its memory.
class AudioLibrary
{
public:
    AudioLibrary() : handle(dlopen(libraryName, RTLD_NOW | RTLD_LOCAL))
    {
        complete = find(setHint, "SDL_SetHint") && find(initSubSystem, "SDL_InitSubSystem") &&
                   find(quitSubSystem, "SDL_QuitSubSystem") &&
                   find(openDevice, "SDL_OpenAudioDevice") &&
                   find(closeDevice, "SDL_CloseAudioDevice") &&
                   find(pauseDevice, "SDL_PauseAudioDevice") &&
                   find(queueAudio, "SDL_QueueAudio") && find(queuedSize, "SDL_GetQueuedAudioSize");
        if (!complete)
            return;
        setHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        complete = initSubSystem(SDL_INIT_AUDIO) == 0;
    }

    ~AudioLibrary()
    {
        if (complete)
            quitSubSystem(SDL_INIT_AUDIO);
    }

    AudioLibrary(const AudioLibrary &) = delete;
    AudioLibrary &operator=(const AudioLibrary &) = delete;

    bool isUsable() const { return complete; }

    decltype(&SDL_SetHint) setHint = nullptr;
    decltype(&SDL_InitSubSystem) initSubSystem = nullptr;
    decltype(&SDL_QuitSubSystem) quitSubSystem = nullptr;
    decltype(&SDL_OpenAudioDevice) openDevice = nullptr;
    decltype(&SDL_CloseAudioDevice) closeDevice = nullptr;
    decltype(&SDL_PauseAudioDevice) pauseDevice = nullptr;
    decltype(&SDL_QueueAudio) queueAudio = nullptr;
    decltype(&SDL_GetQueuedAudioSize) queuedSize = nullptr;

private:
    template <typename Function>
    bool find(Function &function, const char *name)
    {
        function = handle ? reinterpret_cast<Function>(dlsym(handle, name)) : nullptr;
        return function != nullptr;
    }

    void *handle; // stays loaded: the library has threads and exit handlers of its own
    bool complete = false;
};

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
