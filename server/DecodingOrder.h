// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace ZorvaneServer {

/// When pictures are decoded, for streams that only tell when they are shown, as RTSP does: none
/// before one that came earlier.
class DecodingOrder
{
public:
    using Duration = std::chrono::microseconds;

    /// What is shown so much earlier than another picture is a jump of the stamps.
    static constexpr Duration farthest = std::chrono::seconds(1);

    Duration place(Duration shown)
    {
        if (shown > latest || latest - shown > farthest)
            latest = shown;
        return latest;
    }

private:
    Duration latest{0};
};

} // namespace ZorvaneServer
