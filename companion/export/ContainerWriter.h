// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "companion/AvHandles.h"
#include "companion/export/ParameterSets.h"

namespace ZorvaneClient {
namespace Companion {

class TargetFile;

/// Puts packets into a video file as they are. Their times are milliseconds.
class ContainerWriter
{
public:
    /// `container` is "mp4" or "avi".
    ContainerWriter(TargetFile &file, const std::string &container);
    ContainerWriter(const ContainerWriter &) = delete;
    ContainerWriter &operator=(const ContainerWriter &) = delete;

    bool takes(AVCodecID codec) const;
    /// Begins the file, over one that was begun before. `sound` may be null. A container that
    /// knows only a steady rate gets its pictures in slots of `slot` seconds.
    bool begin(const AVCodecParameters &video, const AVCodecParameters *sound, AVRational slot);
    bool hasSound() const { return sound; }
    bool writeVideo(PacketHandle packet);
    /// Sound that has no place in the sequence any more is dropped.
    bool writeSound(PacketHandle packet);
    /// Completes the file; it isn't on the disk yet.
    bool end();

private:
    static int writeBytes(void *writer, uint8_t *bytes, int count);
    static int64_t seekBytes(void *writer, int64_t offset, int whence);

    bool openFile();
    AVStream *addStream(const AVCodecParameters &parameters, AVRational timeBase);
    bool setUpFilter(const AVCodecParameters &video);
    bool filter(AVPacket &packet);
    bool write(AVPacket &packet, const AVStream &stream);

    TargetFile &file;
    const AVOutputFormat *const format;
    OutputHandle output;
    PacketFilterHandle annexB; ///< AVI has H.264 in another form than FLV
    ParameterSets parameterSets;
    AVStream *video = nullptr;
    AVStream *sound = nullptr;
    int64_t lastVideo = AV_NOPTS_VALUE;
    int64_t nextSound = AV_NOPTS_VALUE;
};

} // namespace Companion
} // namespace ZorvaneClient
