// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>

namespace ZorvaneService {

/// When pictures are decoded, of which it is only known when they are shown: never before one that
/// came earlier, and never after they are shown themselves. How far a stream's pictures are out of
/// order is learnt from them; the few until then are shown late.
class DecodingTimes
{
public:
    /// The decoding time of the picture that comes next.
    std::int64_t place(std::int64_t shownMs);

private:
    /// What is shown so much earlier or later than the others is no matter of their order.
    static constexpr std::int64_t farthestMs = 1000;

    std::set<std::int64_t> latest; ///< the pictures that are shown last, of those that came
    std::size_t waiting = 0;       ///< how many came before one that is shown earlier, at most
    std::int64_t lastMs = 0;
};

} // namespace ZorvaneService
