// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "demo/Fault.h"
#include "demo/ServiceWords.h"
#include "service/Http.h"

namespace ZorvaneDemo {

class Faults;

/// Passes a body on and does to its bytes what the fault in force says. Looks again when
/// the faults change, so that a stream that already runs is hit too.
class FaultySink : public BodySink
{
public:
    FaultySink(BodySink &next, const Faults &faultsInForce, HttpRequest of,
               std::optional<Fault> first);

    bool write(const void *data, std::size_t size) override;
    bool isOpen() override { return target.isOpen(); }
    void breakOff() override { target.breakOff(); }

private:
    /// Bytes that are still to be written.
    struct Rest {
        const std::uint8_t *bytes;
        std::size_t size;

        void drop(std::size_t count);
    };

    void look();
    bool pass(Rest *rest, std::size_t count);
    std::size_t untouched(std::size_t size) const;
    bool spoil(Rest *rest);
    bool truncate(const Rest &rest);
    bool stall();
    bool garble(Rest *rest);
    bool slow(Rest *rest);

    BodySink &target;
    const Faults &faults;
    const HttpRequest request;
    std::optional<Fault> fault;
    std::uint64_t seen; ///< the faults' generation
    std::int64_t passed = 0;
    std::int64_t passedBefore = 0; ///< when the fault in force was found
    std::uint32_t random = 1;
};

} // namespace ZorvaneDemo
