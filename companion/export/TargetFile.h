// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace ZorvaneClient {
namespace Companion {

/// A file that appears under its name only when it is whole. Until then it lies beside that
/// name as NAME.part, which is locked, so that two processes never write the same one.
class TargetFile
{
public:
    explicit TargetFile(std::string path);
    /// Removes what isn't finished.
    ~TargetFile();
    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;

    /// Begins anew over what an earlier process may have left.
    bool open();
    bool write(const uint8_t *bytes, size_t count);
    /// As lseek(); negative on failure.
    int64_t seek(int64_t offset, int whence);
    int64_t size() const;
    /// Empties the file.
    bool clear();
    /// Puts the file onto the disk and gives it its name.
    bool finish();
    /// Removes the unfinished file, which then can't be finished any more. False if it is
    /// finished. Once the file is open, any thread may ask.
    bool discard();

    /// What failed, for people.
    const std::string &error() const { return errorText; }

private:
    bool lock();
    bool isStillThere() const;
    bool fail(const char *what);

    const std::string path;
    const std::string partPath;
    std::string errorText;
    int fd = -1;
    size_t unsyncedBytes = 0;
    std::mutex mutex; ///< guards the two below and the names
    bool finished = false;
    bool discarded = false;
};

} // namespace Companion
} // namespace ZorvaneClient
