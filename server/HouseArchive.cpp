// SPDX-License-Identifier: MIT
#include "server/HouseArchive.h"

#include <algorithm>

#include "server/UtcTime.h"
#include "server/WallClock.h"

namespace ZorvaneServer {

namespace {

// Segments are five minutes long: a record is never told as ending where only one of them does.
constexpr std::int64_t reachMs = 60 * minuteMs;

} // namespace

std::vector<ZorvaneService::Record> HouseArchive::records(const ZorvaneService::CameraId &camera,
                                                          std::int64_t startMs,
                                                          std::int64_t endMs) const
{
    const std::string name = cameraName(camera);
    std::vector<Record> all;
    for (const Quality quality : {Quality::Main, Quality::Sub}) {
        const auto some =
            catalogue.records({name, quality}, startMs - reachMs, endMs + reachMs + 1);
        all.insert(all.end(), some.begin(), some.end());
    }
    std::sort(all.begin(), all.end(),
              [](const Record &one, const Record &other) { return one.startMs < other.startMs; });
    std::vector<ZorvaneService::Record> joined;
    for (const Record &one : all) {
        // The catalogue learns of pictures a little later than whoever reads them; what hangs is
        // told no further than to where there would be a gap.
        const std::int64_t presentMs = std::min(wallMs(), one.endMs + Catalogue::gapMs);
        const std::int64_t until = one.isGrowing ? std::max(one.endMs, presentMs) : one.endMs;
        if (!joined.empty() && one.startMs <= joined.back().endMs + Catalogue::gapMs)
            joined.back().endMs = std::max(joined.back().endMs, until);
        else
            joined.push_back({one.startMs, until});
    }
    joined.erase(std::remove_if(joined.begin(), joined.end(),
                                [=](const ZorvaneService::Record &one) {
                                    return one.startMs > endMs || one.endMs <= startMs;
                                }),
                 joined.end());
    return joined;
}

} // namespace ZorvaneServer
