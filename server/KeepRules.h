// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace ZorvaneServer {

/// How much of the archive is kept: what breaks one of the rules goes, oldest first.
struct KeepRules {
    std::optional<std::int64_t> days;
    std::optional<std::int64_t> bytes;
    std::int64_t keepFreeBytes = 0; ///< of the disk

    struct State {
        std::int64_t nowMs;
        std::int64_t oldestEndMs; ///< of the segment that would go next
        std::int64_t archiveBytes;
        std::int64_t freeBytes;
    };
    bool mustGo(const State &state) const;
    /// How much an archive may hold on a disk of that size.
    std::int64_t roomBytes(std::int64_t diskBytes) const;
};

/// How long segments get. One is cut at the first key picture that is due.
struct SegmentRule {
    static constexpr std::int64_t longestMs = 5 * 60 * 1000;
    static constexpr std::int64_t mostBytes = 256 * 1024 * 1024;
    static constexpr std::int64_t leastBytes = 1024 * 1024;

    std::int64_t phaseMs = 0; ///< so that not all cameras cut at once
    std::int64_t largestBytes = mostBytes;

    /// For one stream of `streams` that share `roomBytes`. Segments that grow can't be removed:
    /// on a small disk they have to be small.
    static SegmentRule of(int stream, int streams, std::int64_t roomBytes);
    bool isDue(std::int64_t startMs, std::int64_t bytes, std::int64_t momentMs) const;
};

} // namespace ZorvaneServer
