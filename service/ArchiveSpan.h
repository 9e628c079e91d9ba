// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "service/Http.h"

namespace ZorvaneService {

/// What is wanted of an archive. A span without an end is played, its times are seconds on the
/// wire; one with an end is exported, and they are milliseconds.
struct ArchiveSpan {
    static constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

    std::int64_t startMs = 0;
    std::int64_t endMs = endless;
    int speed = 1;
    std::int64_t bytesPerMs = 0; ///< 0: as fast as they are taken

    bool isExport() const { return endMs != endless; }

    /// Nothing when the times are none.
    static std::optional<ArchiveSpan> from(const HttpRequest &request);
};

} // namespace ZorvaneService
