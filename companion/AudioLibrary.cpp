// SPDX-License-Identifier: MIT
#include "companion/AudioLibrary.h"

#include <dlfcn.h>

namespace ZorvaneClient {
namespace Companion {

namespace {

const char *const libraryName = "libSDL2-2.0.so.0";

} // namespace

template <typename Function>
bool AudioLibrary::find(Function &function, const char *name)
{
    function = handle ? reinterpret_cast<Function>(dlsym(handle, name)) : nullptr;
    return function != nullptr;
}

AudioLibrary::AudioLibrary() : handle(dlopen(libraryName, RTLD_NOW | RTLD_LOCAL))
{
    complete =
        find(setHint, "SDL_SetHint") && find(initSubSystem, "SDL_InitSubSystem") &&
        find(quitSubSystem, "SDL_QuitSubSystem") && find(openDevice, "SDL_OpenAudioDevice") &&
        find(closeDevice, "SDL_CloseAudioDevice") && find(pauseDevice, "SDL_PauseAudioDevice") &&
        find(queueAudio, "SDL_QueueAudio") && find(queuedSize, "SDL_GetQueuedAudioSize");
    if (!complete)
        return;
    setHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    complete = initSubSystem(SDL_INIT_AUDIO) == 0;
}

AudioLibrary::~AudioLibrary()
{
    if (complete)
        quitSubSystem(SDL_INIT_AUDIO);
}

} // namespace Companion
} // namespace ZorvaneClient
