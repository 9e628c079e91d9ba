// SPDX-License-Identifier: MIT
#include "companion/ExportTimeline.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Between packets that are farther apart there may be a gap, unless pictures are rare anyway.
constexpr int64_t shortestGap = 1000;
constexpr int64_t gapInSteps = 4;
constexpr size_t rememberedSteps = 9;
constexpr int64_t ordinaryStep = 40;
/// Stamps of one camera go back a little when its clock is set.
constexpr int64_t clockCorrection = 200;
/// By this much the file may get longer than what is recorded.
constexpr int64_t lengthTolerance = 1000;

} // namespace

ExportTimeline::ExportTimeline(Duration recordedLength, std::optional<Duration> knownSilence)
    : recorded(recordedLength.count())
{
    if (knownSilence)
        silence = knownSilence->count();
}

int64_t ExportTimeline::place(Kind kind, int64_t stamp)
{
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
    const int64_t time = stamp + run.offset;
    if (kind == Sound)
        return std::max<int64_t>(time, 0);
    rememberStep(stamp);
    lastVideo = std::max(time, lastVideo + 1);
    return lastVideo;
}

ExportTimeline::Duration ExportTimeline::end() const
{
    return Duration(lastVideo < 0 ? 0 : lastVideo + usualStep());
}

bool ExportTimeline::breaks(const Track &track, int64_t stamp) const
{
    const Run &run = runs[track.run];
    if (track.lastStamp && stamp < *track.lastStamp - clockCorrection)
        return true;
    if (!track.lastStamp && stamp < run.newest - longestPause())
        return true;
    return stamp - run.newest > longestPause();
}

void ExportTimeline::beginRun(const Track &track, int64_t stamp)
{
    const int64_t kept = keptOf(stamp - runs[track.run].newest);
    const int64_t start = std::max(lastVideo + kept, end().count());
    runs.push_back({start - stamp, stamp});
}

/// How much of a jump stays as a pause.
int64_t ExportTimeline::keptOf(int64_t jump)
{
    if (jump <= 0 || !silence)
        return 0;
    const int64_t taken = std::min(jump, *silence);
    const int64_t kept = jump - taken;
    // No pause is that long: the stamps jump for a reason of their own.
    if (lastVideo + kept > recorded + lengthTolerance)
        return 0;
    *silence -= taken;
    return kept;
}

int64_t ExportTimeline::usualStep() const
{
    if (videoSteps.empty())
        return ordinaryStep;
    std::vector<int64_t> steps(videoSteps.begin(), videoSteps.end());
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

int64_t ExportTimeline::longestPause() const
{
    return std::max(shortestGap, gapInSteps * usualStep());
}

void ExportTimeline::rememberStep(int64_t stamp)
{
    if (lastVideoStamp && stamp > *lastVideoStamp)
        videoSteps.push_back(stamp - *lastVideoStamp);
    lastVideoStamp = stamp;
    if (videoSteps.size() > rememberedSteps)
        videoSteps.pop_front();
}

} // namespace Companion
} // namespace ZorvaneClient
