// SPDX-License-Identifier: MIT
#include "server/StampFilter.h"

#include <algorithm>

namespace ZorvaneServer {

using namespace std::chrono_literals;

namespace {

constexpr StampFilter::Duration sampleEvery = 100ms;
// Too fast is seen soon, since it fills the archive with time that hasn't been. A line that
// stands for some seconds and then brings all at once isn't too slow.
constexpr StampFilter::Duration fastAfter = 1s;
constexpr StampFilter::Duration slowAfter = 10s;
constexpr double fastest = 2;
constexpr double slowest = 0.5;
constexpr int gapSteps = 3;
constexpr int memory = 8;

} // namespace

StampFilter::Step StampFilter::take(Duration stamp, Duration now)
{
    Step step;
    if (lastStamp)
        step = judge(stamp - *lastStamp, now - lastNow);
    lastStamp = stamp;
    lastNow = now;
    remember(now);
    return step;
}

StampFilter::Step StampFilter::judge(Duration told, Duration lived)
{
    const bool isNear = told >= 0us && told <= longestStep;
    const bool wasLived = told > 0us && told - lived <= longestStep && lived - told <= longestStep;
    const bool believed = isNear || wasLived;
    Duration length = told;
    if (!believed)
        length = lived > longestStep || !wasBelieved ? lived : usual;
    toldSum += length;
    const bool isGuess = isNonsense();
    if (isGuess)
        length = lived;
    else if (isNear && told > 0us)
        usual += (told - usual) / memory;
    wasBelieved = believed;
    return {length, length > std::max(longestStep, gapSteps * usual), isGuess};
}

void StampFilter::remember(Duration now)
{
    if (samples.empty() || now - samples.back().now >= sampleEvery)
        samples.push_back({now, toldSum});
    while (samples.size() > 1 && now - samples[1].now >= slowAfter)
        samples.pop_front();
}

/// How fast the stamps ran, seen over at least `age`; 1 when it isn't known.
double StampFilter::rateSince(Duration age) const
{
    const auto after = std::find_if(samples.rbegin(), samples.rend(), [this, age](Sample sample) {
        return lastNow - sample.now >= age;
    });
    if (after == samples.rend() || lastNow == after->now)
        return 1;
    return double((toldSum - after->told).count()) / double((lastNow - after->now).count());
}

bool StampFilter::isNonsense() const
{
    return rateSince(fastAfter) > fastest || rateSince(slowAfter) < slowest;
}

} // namespace ZorvaneServer
