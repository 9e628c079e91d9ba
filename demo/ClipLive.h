// SPDX-License-Identifier: MIT
#pragma once

#include "demo/ClipCursor.h"
#include "service/MediaSource.h"

namespace ZorvaneDemo {

/// The clips of a camera by the wall clock.
class ClipLive : public LiveSource
{
public:
    explicit ClipLive(ClipCursor clips);

    std::optional<std::int64_t> begin() override;
    Outcome read(MediaPacket *packet) override;

private:
    ClipCursor cursor;
};

} // namespace ZorvaneDemo
