// SPDX-License-Identifier: MIT
#include "companion/CommandInput.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "companion/Controls.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr size_t maxLineBytes = 1024;
const std::string volumeCommand = "volume ";

std::string trimmed(const std::string &line)
{
    const char *const blanks = " \t\r";
    const size_t first = line.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

} // namespace

CommandInput::CommandInput(int descriptor, Controls &sharedControls)
    : fd(descriptor), controls(sharedControls)
{
}

void CommandInput::run()
{
    lastPing = controls.elapsed();
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(lastPing + pingLimit - controls.elapsed());
        if (left.count() <= 0)
            return;
        pollfd entry = {fd, POLLIN, 0};
        const int ready = poll(&entry, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR)
            return;
        if (ready > 0 && !readSome())
            return;
    }
}

bool CommandInput::readSome()
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(fd, bytes.data(), bytes.size());
    if (count < 0)
        return errno == EINTR || errno == EAGAIN;
    if (count == 0)
        return false;
    buffer.append(bytes.data(), static_cast<size_t>(count));
    takeLines();
    return true;
}

void CommandInput::takeLines()
{
    size_t start = 0;
    for (size_t end; (end = buffer.find('\n', start)) != std::string::npos; start = end + 1) {
        if (!discarding && end - start <= maxLineBytes)
            obey(trimmed(buffer.substr(start, end - start)));
        discarding = false;
    }
    buffer.erase(0, start);
    if (buffer.size() > maxLineBytes) {
        buffer.clear();
        discarding = true;
    }
}

void CommandInput::obey(const std::string &line)
{
    if (line == "ping") {
        lastPing = controls.elapsed();
    } else if (line == "pause") {
        controls.setPaused(true);
    } else if (line == "unpause") {
        controls.setPaused(false);
    } else if (line.compare(0, volumeCommand.size(), volumeCommand) == 0) {
        const char *number = line.c_str() + volumeCommand.size();
        char *end = nullptr;
        const long volume = std::strtol(number, &end, 10);
        if (end != number && *end == '\0')
            controls.setVolume(volume);
    }
}

} // namespace Companion
} // namespace ZorvaneClient
