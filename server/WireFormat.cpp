// SPDX-License-Identifier: MIT
#include "server/WireFormat.h"

#include "server/H264.h"
#include "service/NalUnit.h"

namespace ZorvaneServer {

WireFormat WireFormat::of(const StreamFormat &format)
{
    WireFormat wire;
    wire.told.size = {format.width, format.height};
    const auto sets = H264::ParameterSets::of(format.videoSetup.data(), format.videoSetup.size());
    if (!sets.isComplete())
        return wire;
    wire.told.sps = sets.sequence.front();
    wire.told.pps = sets.picture.front();
    for (const auto *kind : {&sets.sequence, &sets.picture}) {
        for (auto set = kind->begin() + 1; set != kind->end(); ++set)
            ZorvaneService::appendWithLength({set->data(), set->size()}, &wire.furtherSets);
    }
    return wire;
}

void WireFormat::write(const MediaPacket &picture, Bytes *out) const
{
    out->clear();
    if (picture.isKey)
        *out = furtherSets;
    out->insert(out->end(), picture.data.begin(), picture.data.end());
}

} // namespace ZorvaneServer
