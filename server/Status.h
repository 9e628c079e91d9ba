// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/ArchiveFolder.h"
#include "server/StreamId.h"
#include "server/StreamMeter.h"

namespace ZorvaneServer {

/// How the program is doing.
struct Status {
    struct Stream {
        StreamId id;
        StreamMeter::Reading reading;
        std::int64_t recordedMs = 0; ///< that the archive holds
        std::int64_t dropped = 0;    ///< pictures, since the program began
    };

    std::vector<Stream> streams;
    std::string archiveFolder;
    ArchiveFolder::Room room;
    std::size_t segments = 0;
    bool isWritten = true; ///< false while nothing can be written

    /// A table for people, in local time.
    std::string text() const;
};

} // namespace ZorvaneServer
