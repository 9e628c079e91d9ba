// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace ZorvaneClient {
namespace Companion {

class Controls;

/// Reads the client's commands: "pause", "unpause", "volume N", "ping". Unknown lines are
/// passed over.
class CommandInput
{
public:
    static constexpr auto pingLimit = std::chrono::seconds(10);

    CommandInput(int descriptor, Controls &controls);

    /// Returns when the input is closed or no "ping" came for `pingLimit`.
    void run();

private:
    bool readSome();
    void takeLines();
    void obey(const std::string &line);

    int fd;
    Controls &controls;
    std::string buffer;
    bool discarding = false;
    std::chrono::microseconds lastPing{0}; ///< by the controls' clock, pauses counted
};

} // namespace Companion
} // namespace ZorvaneClient
