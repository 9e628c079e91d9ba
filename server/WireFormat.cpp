// SPDX-License-Identifier: MIT
#include "server/WireFormat.h"

#include "server/H264.h"

namespace ZorvaneServer {

ZorvaneService::MediaFormat wireFormat(const StreamFormat &format)
{
    ZorvaneService::MediaFormat wire;
    wire.size = {format.width, format.height};
    const auto sets = H264::ParameterSets::of(format.videoSetup.data(), format.videoSetup.size());
    if (sets.isComplete()) {
        wire.sps = sets.sequence.front();
        wire.pps = sets.picture.front();
    }
    return wire;
}

} // namespace ZorvaneServer
