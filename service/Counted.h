// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace ZorvaneService {

/// Counts something for as long as it lives.
class Counted
{
public:
    explicit Counted(std::atomic<int> &number) : count(number) { ++count; }
    ~Counted() { --count; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

private:
    std::atomic<int> &count;
};

} // namespace ZorvaneService
