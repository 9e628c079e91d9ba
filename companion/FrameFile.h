// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ZorvaneClient {
namespace Companion {

/// The memory shared with the client: one picture of blue, green, red, alpha bytes, rows
/// without padding, top row first. The client makes the file; its size is never changed here.
class FrameFile
{
public:
    static constexpr int bytesPerPixel = 4;
    static constexpr int64_t maxPixels = 3'145'728;
    static constexpr size_t sizeBytes = maxPixels * bytesPerPixel;

    FrameFile() = default;
    ~FrameFile();
    FrameFile(const FrameFile &) = delete;
    FrameFile &operator=(const FrameFile &) = delete;

    /// Maps the file of that name in the temporary directory; it must have exactly
    /// `sizeBytes`. On failure false, and `error()` says why.
    bool open(const std::string &name);

    uint8_t *pixels() const { return memory; }
    const std::string &error() const { return errorText; }

private:
    uint8_t *memory = nullptr;
    std::string errorText;
};

} // namespace Companion
} // namespace ZorvaneClient
