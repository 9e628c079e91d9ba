// SPDX-License-Identifier: MIT
#include "companion/export/ExportWatch.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "companion/export/ExportOutput.h"
#include "companion/export/TargetFile.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

enum class Reason { InputClosed, Signal };

/// False at the end of the input.
bool readInput()
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

Reason waitForEnd(int signalFd)
{
    for (;;) {
        std::array<pollfd, 2> entries = {{{STDIN_FILENO, POLLIN, 0}, {signalFd, POLLIN, 0}}};
        if (poll(entries.data(), entries.size(), -1) < 0)
            continue;
        if (entries[1].revents)
            return Reason::Signal;
        if (entries[0].revents && !readInput())
            return Reason::InputClosed;
    }
}

} // namespace

ExportWatch::ExportWatch()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signalFd = signalfd(-1, &signals, SFD_CLOEXEC);
}

void ExportWatch::start(TargetFile &file, ExportOutput &output) const
{
    std::thread([this, &file, &output] {
        const Reason reason = waitForEnd(signalFd);
        if (!file.discard())
            return; // it is finished, and the process about to end
        if (reason == Reason::Signal)
            output.error();
        std::_Exit(EXIT_FAILURE);
    }).detach();
}

} // namespace Companion
} // namespace ZorvaneClient
