// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneDemo {

/// Encodes a minute of quiet room tone with a soft chime each ten seconds as MP3.
/// Empty on success, else what failed.
std::string makeSoundClip(const std::string &fileName);

} // namespace ZorvaneDemo
