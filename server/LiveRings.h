// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <vector>

#include "server/LiveRing.h"
#include "server/StreamId.h"

namespace ZorvaneServer {

/// The rings of all streams. Which streams there are never changes.
class LiveRings
{
public:
    explicit LiveRings(const std::vector<StreamId> &streams)
    {
        for (const StreamId &stream : streams)
            rings[stream];
    }

    /// Null when there is no such stream.
    LiveRing *find(const StreamId &stream)
    {
        const auto found = rings.find(stream);
        return found == rings.end() ? nullptr : &found->second;
    }

private:
    std::map<StreamId, LiveRing> rings;
};

} // namespace ZorvaneServer
