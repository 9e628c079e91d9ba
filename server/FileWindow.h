// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "server/StreamFormat.h"

namespace ZorvaneServer {

/// Looks at a file that others may be writing, a piece at a time. The descriptor is the
/// caller's.
class FileWindow
{
public:
    explicit FileWindow(int descriptor) : fd(descriptor) {}

    struct View {
        const std::uint8_t *data;
        std::size_t size; ///< less than wanted where the file ends
    };
    /// Valid until the next call. Small pieces only: a window is read for each miss.
    View at(std::uint64_t offset, std::size_t wanted);
    /// What lay behind the end of a file that grows may be written otherwise than it was begun.
    void forget() { window.clear(); }
    /// Whether the file has all bytes before `offset`.
    bool reaches(std::uint64_t offset);

private:
    int fd;
    Bytes window;
    std::uint64_t begin = 0;
    std::uint64_t knownSize = 0;
};

} // namespace ZorvaneServer
