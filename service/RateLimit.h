// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

#include "service/Http.h"

namespace ZorvaneService {

/// Lets pass so many bytes a millisecond; 0: as fast as they are taken.
class RateLimit : public BodySink
{
public:
    RateLimit(BodySink &receiver, std::int64_t bytesPerMs) : sink(receiver), rate(bytesPerMs) {}

    bool write(const void *data, std::size_t size) override;
    bool isOpen() override { return sink.isOpen(); }
    void breakOff() override { sink.breakOff(); }

private:
    BodySink &sink;
    const std::int64_t rate;
    const std::chrono::steady_clock::time_point began = std::chrono::steady_clock::now();
    std::int64_t passed = 0;
};

} // namespace ZorvaneService
