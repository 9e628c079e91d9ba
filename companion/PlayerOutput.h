// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace ZorvaneClient {
namespace Companion {

/// Numbers of the "state" lines.
enum class StreamState { Opening = 1, Buffering = 2, Playing = 3, Ended = 6, Error = 7 };

/// The lines of a player to the client. What was set since the last `flush()` goes out in one
/// write, in the order state, size, time, frame. When the client doesn't read and the pipe is
/// full, times and frames are dropped, and the last state and size wait for the next flush.
class PlayerOutput
{
public:
    explicit PlayerOutput(int descriptor);

    void state(StreamState state) { pendingState = state; }
    void size(int width, int height) { pendingSize = Size{width, height}; }
    void time(int64_t milliseconds) { pendingTime = milliseconds; }
    void frame() { pendingFrame = true; }

    /// False when nobody can read any more.
    bool flush();
    /// As `flush()`, but waits a short while for a reader that is behind.
    bool flushPatiently();

private:
    struct Size {
        int width;
        int height;
    };

    bool waitWritable(std::chrono::milliseconds limit) const;
    std::string pendingText() const;
    bool write(const std::string &text) const;

    int fd;
    std::optional<StreamState> pendingState;
    std::optional<Size> pendingSize;
    std::optional<int64_t> pendingTime;
    bool pendingFrame = false;
};

} // namespace Companion
} // namespace ZorvaneClient
