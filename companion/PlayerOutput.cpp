// SPDX-License-Identifier: MIT
#include "companion/PlayerOutput.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr auto patience = std::chrono::milliseconds(1000);

} // namespace

PlayerOutput::PlayerOutput(int descriptor) : fd(descriptor)
{
}

bool PlayerOutput::flush()
{
    const std::string text = pendingText();
    if (text.empty())
        return true;
    const bool writable = waitWritable(std::chrono::milliseconds(0));
    pendingTime.reset();
    pendingFrame = false;
    if (!writable)
        return true;
    pendingState.reset();
    pendingSize.reset();
    return write(text);
}

bool PlayerOutput::flushPatiently()
{
    waitWritable(patience);
    return flush();
}

/// Also true when the other end is gone: the write then says so.
bool PlayerOutput::waitWritable(std::chrono::milliseconds limit) const
{
    pollfd entry = {fd, POLLOUT, 0};
    int ready = 0;
    do {
        ready = poll(&entry, 1, static_cast<int>(limit.count()));
    } while (ready < 0 && errno == EINTR);
    return ready != 0;
}

std::string PlayerOutput::pendingText() const
{
    std::string text;
    if (pendingState)
        text += "state " + std::to_string(static_cast<int>(*pendingState)) + "\n";
    if (pendingSize) {
        text += "size " + std::to_string(pendingSize->width) + " " +
                std::to_string(pendingSize->height) + "\n";
    }
    if (pendingTime)
        text += "time " + std::to_string(*pendingTime) + "\n";
    if (pendingFrame)
        text += "frame\n";
    return text;
}

bool PlayerOutput::write(const std::string &text) const
{
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(fd, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0 && errno == EAGAIN && waitWritable(patience))
            continue;
        if (written <= 0)
            return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

} // namespace Companion
} // namespace ZorvaneClient
