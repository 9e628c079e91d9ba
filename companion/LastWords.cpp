// SPDX-License-Identifier: MIT
#include "companion/LastWords.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <memory>
#include <string_view>

#include "companion/PlayerOutput.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr int signalExitBase = 128;
/// The registers of large processors alone are several thousand.
constexpr size_t stackBytes = size_t(64) * 1024;

static_assert(static_cast<int>(StreamState::Error) == 7, "what a crash says");
/// Begins with an end of line, as the crash may lie in the middle of one.
constexpr std::string_view crashLine = "\nstate 7\n";

/// What doesn't end a process, unless it asks for it.
constexpr std::array harmless{SIGCHLD, SIGCONT, SIGSTOP, SIGTSTP,
                              SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};

extern "C" void onCrash(int signal)
{
    // Nobody is left to tell when this fails.
    const ssize_t written = ::write(STDOUT_FILENO, crashLine.data(), crashLine.size());
    static_cast<void>(written);
    ::_exit(signalExitBase + signal);
}

/// Whatever the thread still does at its end finds no stack that is gone.
struct GiveBack {
    void operator()(const uint8_t *bytes) const
    {
        stack_t none = {};
        none.ss_flags = SS_DISABLE;
        sigaltstack(&none, nullptr);
        delete[] bytes;
    }
};

} // namespace

void LastWords::say()
{
    PlayerOutput output(STDOUT_FILENO);
    output.state(StreamState::Error);
    output.flush();
}

void LastWords::sayAtCrash()
{
    lendStack();
    struct sigaction action = {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK;
    // Faults of its own, and what ends a process from outside: only SIGKILL leaves no word.
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (std::find(harmless.begin(), harmless.end(), signal) != harmless.end())
            continue;
        struct sigaction present = {};
        sigaction(signal, nullptr, &present);
        if (present.sa_handler == SIG_DFL)
            sigaction(signal, &action, nullptr);
    }
}

void LastWords::lendStack()
{
    // On the heap: what a thread has of its own would be taken from every thread's stack, and
    // the audio library makes one that is too small for that.
    thread_local const std::unique_ptr<uint8_t[], GiveBack> bytes(new uint8_t[stackBytes]);
    stack_t stack = {};
    stack.ss_sp = bytes.get();
    stack.ss_size = stackBytes;
    sigaltstack(&stack, nullptr);
}

} // namespace Companion
} // namespace ZorvaneClient
