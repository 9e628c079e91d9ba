// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <mutex>

namespace ZorvaneService {

/// A thread for every connection: a stream holds its own for as long as it is watched. Threads
/// that have nothing to do are used again; none ever ends, so the pool must outlive them.
class GrowingPool : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> task) override;
    void shutdown() override {}

private:
    [[noreturn]] void work();

    std::mutex mutex;
    std::condition_variable wake;
    std::list<std::function<void()>> tasks;
    std::size_t idle = 0;
};

} // namespace ZorvaneService
