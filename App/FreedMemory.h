// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace ZorvaneClient {
namespace App {

/// How often it is worth it: what is used in between doesn't come and go with each picture.
constexpr std::chrono::minutes freedMemoryPeriod{1};

/// Gives back to the system what the program has freed. Pictures of many sizes leave holes
/// between what stays, which the C library keeps for itself, and which become more for weeks.
void giveBackFreedMemory();

} // namespace App
} // namespace ZorvaneClient
