// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "companion/StallWatch.h"
#include "companion/export/ContainerWriter.h"
#include "companion/export/ExportArguments.h"
#include "companion/export/ExportLookAhead.h"
#include "companion/export/ExportTimeline.h"

namespace ZorvaneClient {
namespace Companion {

class ExportOutput;
class TargetFile;

/// Puts an archive stream into a file as it comes, without decoding it, and tells the client
/// how far it is.
class Exporter
{
public:
    static constexpr auto stallLimit = std::chrono::seconds(30);
    static constexpr auto pictureLimit = std::chrono::seconds(120);

    /// `file` is open.
    Exporter(const ExportArguments &arguments, TargetFile &file, ExportOutput &output);

    /// Returns at the end of the stream; true when the file has its name.
    bool run();
    /// What failed, for people.
    const std::string &error() const { return errorText; }

private:
    /// Of a clock that never jumps.
    static StallWatch::Time now();
    static int interruptWhenStalled(void *exporter);
    bool isStalled();

    bool open();
    bool copyToEnd();
    bool isBeyondFragment() const;
    bool takePacket(PacketHandle packet);
    void chooseStream(const AVStream &stream, const AVPacket &packet);
    bool takeSample(ExportSample sample);
    bool beginFile();
    bool hasUsableSound(AVCodecParameters &sound) const;
    bool writeSample(ExportSample sample);
    bool finish();
    bool fail(const std::string &what);

    const ExportArguments &arguments;
    TargetFile &file;
    ExportOutput &output;
    ExportTimeline timeline;
    ContainerWriter writer;
    FormatHandle input;
    const AVStream *video = nullptr;
    const AVStream *sound = nullptr;

    ExportLookAhead beginning;
    bool begun = false;
    bool torn = false; ///< the stream ended in the middle of a packet
    std::string errorText;

    StallWatch stallWatch{stallLimit};
    StallWatch pictureWatch{pictureLimit};
};

} // namespace Companion
} // namespace ZorvaneClient
