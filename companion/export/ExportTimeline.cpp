// SPDX-License-Identifier: MIT
#include "companion/export/ExportTimeline.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

namespace {

using Duration = ExportTimeline::Duration;

/// Between packets that are farther apart there may be a gap, unless pictures are rare anyway.
constexpr auto shortestGap = Duration(1000);
constexpr int gapInSteps = 4;
constexpr size_t rememberedSteps = 9;
constexpr auto ordinaryStep = Duration(40);
/// Stamps of one camera go back a little when its clock is set.
constexpr auto clockCorrection = Duration(200);
/// By this much the file may get longer than what is recorded.
constexpr auto lengthTolerance = Duration(1000);
constexpr auto moment = Duration(1);

} // namespace

ExportTimeline::ExportTimeline(Duration recordedLength, std::optional<Duration> knownSilence)
    : recorded(recordedLength), silence(knownSilence)
{
}

int64_t ExportTimeline::place(Kind kind, int64_t stampMilliseconds)
{
    const Duration stamp(stampMilliseconds);
    if (runs.empty())
        runs.push_back({-stamp, stamp});
    Track &track = tracks[kind];
    // The other track may have found the break already.
    while (breaks(track, stamp)) {
        if (track.run + 1 == runs.size())
            beginRun(track, stamp);
        ++track.run;
        track.lastStamp.reset();
    }
    Run &run = runs[track.run];
    run.newest = std::max(run.newest, stamp);
    track.lastStamp = stamp;
    const Duration time = stamp + run.offset;
    if (kind == Sound)
        return std::max(time, Duration(0)).count();
    rememberStep(stamp);
    lastVideo = std::max(time, lastVideo + moment);
    return lastVideo.count();
}

Duration ExportTimeline::end() const
{
    return lastVideo < Duration(0) ? Duration(0) : lastVideo + step();
}

bool ExportTimeline::breaks(const Track &track, Duration stamp) const
{
    const Run &run = runs[track.run];
    if (track.lastStamp && stamp < *track.lastStamp - clockCorrection)
        return true;
    if (!track.lastStamp && stamp < run.newest - longestPause())
        return true;
    return stamp - run.newest > longestPause();
}

void ExportTimeline::beginRun(const Track &track, Duration stamp)
{
    const Duration kept = keptOf(stamp - runs[track.run].newest);
    const Duration start = std::max(lastVideo + kept, end());
    runs.push_back({start - stamp, stamp});
}

/// How much of a jump stays as a pause.
Duration ExportTimeline::keptOf(Duration jump)
{
    if (jump <= Duration(0) || !silence)
        return Duration(0);
    const Duration taken = std::min(jump, *silence);
    const Duration kept = jump - taken;
    // No pause is that long: the stamps jump for a reason of their own.
    if (lastVideo + kept > recorded + lengthTolerance)
        return Duration(0);
    *silence -= taken;
    return kept;
}

Duration ExportTimeline::step() const
{
    if (videoSteps.empty())
        return ordinaryStep;
    std::vector<Duration> steps(videoSteps.begin(), videoSteps.end());
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

Duration ExportTimeline::longestPause() const
{
    return std::max(shortestGap, gapInSteps * step());
}

void ExportTimeline::rememberStep(Duration stamp)
{
    if (lastVideoStamp && stamp > *lastVideoStamp)
        videoSteps.push_back(stamp - *lastVideoStamp);
    lastVideoStamp = stamp;
    if (videoSteps.size() > rememberedSteps)
        videoSteps.pop_front();
}

} // namespace Companion
} // namespace ZorvaneClient
