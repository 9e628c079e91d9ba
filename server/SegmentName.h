// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZorvaneServer {

/// What a segment's file name says: when it begins, and how long it is once it is finished.
struct SegmentName {
    std::int64_t startMs = 0;
    std::optional<std::int64_t> lengthMs; ///< none: it still grows

    bool isGrowing() const { return !lengthMs; }
    /// "<start>+<length>.mkv" or "<start>.part".
    std::string text() const;
    /// Nothing for any other file.
    static std::optional<SegmentName> of(std::string_view fileName);
};

} // namespace ZorvaneServer
