// SPDX-License-Identifier: MIT
#pragma once

#include "server/MediaPacket.h"
#include "service/MediaFormat.h"

namespace ZorvaneServer {

/// What a receiver is told of a stream before its pictures.
struct WireFormat {
    static WireFormat of(const StreamFormat &format);

    ZorvaneService::MediaFormat told; ///< nothing of the sound
    /// Parameter sets that have no place in there, as units behind their lengths: they come with
    /// each key picture.
    Bytes furtherSets;

    /// Puts what is sent of a picture into `out`, whose memory is used again.
    void write(const MediaPacket &picture, Bytes *out) const;
};

} // namespace ZorvaneServer
