// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>

namespace ZorvaneDemo {

/// One line on standard error that fills up. Safe to use from any thread.
class ProgressBar
{
public:
    explicit ProgressBar(int allSteps);

    void step();

private:
    const int steps;
    const bool terminal;
    std::atomic<int> count{0};
    std::mutex mutex;
    int shown = -1;
};

} // namespace ZorvaneDemo
