// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace ZorvaneClient {
namespace Companion {

/// Turns the time stamps of an archive stream into times of a file without gaps. Between two
/// records the stamps may jump ahead, begin anew, or run on as if nothing were missing; in the
/// file the records follow each other.
class ExportTimeline
{
public:
    using Duration = std::chrono::milliseconds;
    enum Kind { Video, Sound };

    /// `recorded` is the length that the file is to have. No more than `silence` is taken out,
    /// if that is known, since pictures may be rare within a record too.
    ExportTimeline(Duration recorded, std::optional<Duration> silence);

    /// Time in the file of the next packet of that kind, by its decoding time; both milliseconds.
    /// The first one of all comes at 0, and none of the video before the one ahead of it.
    int64_t place(Kind kind, int64_t stamp);

    /// For how long a picture is shown as a rule.
    Duration step() const;
    /// Where the video ends that has been placed so far.
    Duration end() const;

private:
    /// A run of stamps that belong together.
    struct Run {
        Duration offset;
        Duration newest;
    };
    struct Track {
        size_t run = 0;
        std::optional<Duration> lastStamp; ///< within that run
    };

    bool breaks(const Track &track, Duration stamp) const;
    void beginRun(const Track &track, Duration stamp);
    Duration keptOf(Duration jump);
    Duration longestPause() const;
    void rememberStep(Duration stamp);

    const Duration recorded;
    std::optional<Duration> silence; ///< what is left of it
    std::vector<Run> runs;
    std::array<Track, 2> tracks;
    Duration lastVideo{-1}; ///< time in the file
    std::optional<Duration> lastVideoStamp;
    std::deque<Duration> videoSteps; ///< the last few, as the stamps have them
};

} // namespace Companion
} // namespace ZorvaneClient
