// SPDX-License-Identifier: MIT
#include "service/Pace.h"

#include <algorithm>

namespace ZorvaneService {

namespace {

using std::chrono::milliseconds;

/// A stream whose receiver fell back further goes on from where it was.
constexpr milliseconds largestLag{3000};
/// Pictures come so much before their time: recorders read ahead.
constexpr milliseconds lead{500};

} // namespace

std::int64_t Pace::leftMs(std::int64_t momentMs)
{
    const milliseconds played(std::max<std::int64_t>(momentMs - firstMs, 0) / speed);
    const auto lag = std::chrono::steady_clock::now() - (began + played - lead);
    if (lag > largestLag)
        began += lag;
    return std::chrono::ceil<milliseconds>(-lag).count();
}

} // namespace ZorvaneService
