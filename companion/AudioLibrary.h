// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

namespace ZorvaneClient {
namespace Companion {

/// SDL, loaded when needed: a muted tile has neither its start-up time nor its memory.
class AudioLibrary
{
public:
    AudioLibrary();
    ~AudioLibrary();
    AudioLibrary(const AudioLibrary &) = delete;
    AudioLibrary &operator=(const AudioLibrary &) = delete;

    /// False when there is no library, or no sound system for it; then nothing may be called.
    bool isUsable() const { return complete; }

    decltype(&SDL_OpenAudioDevice) openDevice = nullptr;
    decltype(&SDL_CloseAudioDevice) closeDevice = nullptr;
    decltype(&SDL_PauseAudioDevice) pauseDevice = nullptr;
    decltype(&SDL_QueueAudio) queueAudio = nullptr;
    decltype(&SDL_GetQueuedAudioSize) queuedSize = nullptr;

private:
    template <typename Function>
    bool find(Function &function, const char *name);

    decltype(&SDL_SetHint) setHint = nullptr;
    decltype(&SDL_InitSubSystem) initSubSystem = nullptr;
    decltype(&SDL_QuitSubSystem) quitSubSystem = nullptr;
    void *handle; // stays loaded: the library has threads and exit handlers of its own
    bool complete = false;
};

} // namespace Companion
} // namespace ZorvaneClient
