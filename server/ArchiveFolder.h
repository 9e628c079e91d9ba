// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "server/Catalogue.h"
#include "server/SegmentWriter.h"

namespace ZorvaneServer {

/// The folder that holds the archive: <camera>/<main|sub>/<day>/<segment>. It is written to
/// only while its marker file is in it, so that a disk that isn't mounted doesn't have the
/// archive written to the folder that it is mounted on.
class ArchiveFolder
{
public:
    static constexpr char marker[] = ".zorvane-archive";

    explicit ArchiveFolder(std::string folderPath) : path(std::move(folderPath)) {}

    /// Makes the folder, unless it is there, and its marker. False with `errno`.
    bool prepare() const;
    bool isReady() const;
    /// What tells the folder that is there now from others in its place; empty when it isn't
    /// ready.
    std::string identity() const;

    struct Room {
        std::int64_t totalBytes = 0;
        std::int64_t freeBytes = 0; ///< for those without privileges
    };
    Room room() const;

    /// Puts all finished segments into the catalogue and calls `found` for each growing one
    /// that was left.
    void list(Catalogue &catalogue,
              const std::function<void(const StreamId &, const SegmentName &)> &found) const;
    /// Begins a segment at the moment, or as soon after it as no other one begins. Null with
    /// `errno`; ENOENT when the folder isn't ready.
    std::unique_ptr<SegmentWriter> create(const StreamId &stream, FormatPtr format,
                                          std::int64_t startMs) const;
    /// Gives a finished file its name.
    bool rename(const StreamId &stream, const SegmentName &part, const SegmentName &finished) const;
    /// Finishes what was left growing; nothing when nothing came of it, EWOULDBLOCK in `errno`
    /// while it is still written.
    std::optional<SegmentName> recover(const StreamId &stream, const SegmentName &part) const;
    /// Removes the file, and its day with the last one of it; none to remove is as good. False
    /// with `errno`.
    bool remove(const StreamId &stream, const SegmentName &name) const;
    /// Bytes of a segment's file; 0 when it isn't there.
    std::int64_t sizeOf(const StreamId &stream, const SegmentName &name) const;
    std::string pathOf(const StreamId &stream, const SegmentName &name) const;

private:
    std::string dayPath(const StreamId &stream, std::int64_t startMs) const;

    std::string path;
};

} // namespace ZorvaneServer
