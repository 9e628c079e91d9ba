// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace ZorvaneClient {
namespace Companion {

/// What the client asks of an export on the command line.
struct ExportArguments {
    std::string url;                       ///< stream address, made safe for a request line
    std::string container;                 ///< "mp4" or "avi"
    std::chrono::milliseconds recorded{0}; ///< length of what is recorded in the fragment
    std::string path;                      ///< absolute path of the finished file

    /// How much of the fragment holds no record, by the times in the address; nothing if those
    /// aren't there.
    std::optional<std::chrono::milliseconds> silence;
};

/// The first argument, which tells an export from a player.
extern const std::string exportWord;

/// Reads the arguments after "export"; nothing if they are wrong.
std::optional<ExportArguments> parseExportArguments(const std::vector<std::string> &arguments);

} // namespace Companion
} // namespace ZorvaneClient
