// SPDX-License-Identifier: MIT
#pragma once

#include "companion/PacketQueue.h"

namespace ZorvaneClient {
namespace Companion {

/// Turns video packets into pictures; opens and changes the decoder as the stream demands.
class PictureDecoder
{
public:
    PictureDecoder();

    /// A packet that can't be decoded is passed over.
    void send(const QueuedPacket &item);
    /// No packet follows: the pictures held back come out.
    void sendEnd();
    /// The next picture, valid until the next call; null if a packet is needed first.
    const AVFrame *receive();
    /// While set, pictures that no other one needs are not decoded.
    void setHurry(bool hurry);
    /// No decoder is there for the format of the stream.
    bool isUnusable() const { return unusable; }

private:
    void open(const std::shared_ptr<const StreamFormat> &newFormat);

    std::shared_ptr<const StreamFormat> format;
    CodecHandle codec;
    FrameHandle frame;
    bool unusable = false;
};

} // namespace Companion
} // namespace ZorvaneClient
