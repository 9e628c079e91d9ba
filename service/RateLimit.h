// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "service/Http.h"
#include "service/LocalTime.h"

namespace ZorvaneService {

/// Lets pass so many bytes a millisecond; 0: as fast as they are taken.
class RateLimit : public BodySink
{
public:
    RateLimit(BodySink &receiver, std::int64_t bytesPerMs) : sink(receiver), rate(bytesPerMs) {}

    bool write(const void *data, std::size_t size) override;
    bool isOpen() override { return sink.isOpen(); }

private:
    BodySink &sink;
    const std::int64_t rate;
    const std::int64_t beganMs = nowMs();
    std::int64_t passed = 0;
};

} // namespace ZorvaneService
