// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include <unistd.h>

namespace ZorvaneServer {

/// Owns a file descriptor.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : fd(descriptor) {}
    Descriptor(Descriptor &&other) noexcept : fd(std::exchange(other.fd, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(fd, other.fd);
        return *this;
    }
    ~Descriptor()
    {
        if (fd >= 0)
            close(fd);
    }

    explicit operator bool() const { return fd >= 0; }
    int get() const { return fd; }

private:
    int fd = -1;
};

} // namespace ZorvaneServer
