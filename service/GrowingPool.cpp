// SPDX-License-Identifier: MIT
#include "service/GrowingPool.h"

#include <thread>
#include <utility>

namespace ZorvaneService {

void GrowingPool::enqueue(std::function<void()> task)
{
    const std::lock_guard<std::mutex> lock(mutex);
    tasks.push_back(std::move(task));
    if (idle < tasks.size())
        std::thread([this] { work(); }).detach();
    else
        wake.notify_one();
}

void GrowingPool::work()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        ++idle;
        wake.wait(lock, [this] { return !tasks.empty(); });
        --idle;
        const std::function<void()> task = std::move(tasks.front());
        tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

} // namespace ZorvaneService
