// SPDX-License-Identifier: MIT
#pragma once

#include "demo/ClipCursor.h"
#include "service/MediaSource.h"

namespace ZorvaneDemo {

/// The clips of a camera from any moment on: they go on through the gaps of its archive.
class ClipArchive : public ArchiveSource
{
public:
    explicit ClipArchive(ClipCursor clips);

    std::optional<std::int64_t> seek(const Record &record, std::int64_t momentMs) override;
    Outcome read(MediaPacket *packet) override;

private:
    ClipCursor cursor;
};

} // namespace ZorvaneDemo
