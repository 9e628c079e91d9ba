// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneDemo {

/// Holds a folder's lock file while it lives. Waits for whoever else holds it.
class FolderLock
{
public:
    explicit FolderLock(const std::string &folder);
    ~FolderLock();
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

    /// False, with errno, when the file can't be used.
    bool isHeld() const { return file >= 0; }

private:
    int file;
};

} // namespace ZorvaneDemo
