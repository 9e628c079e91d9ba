// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneDemo {

/// How the scenes are encoded.
struct ClipForm {
    bool test = false;  ///< fewer pictures a second, made in a fraction of the time
    bool noise = false; ///< as a real camera's: with its noise, at its bit rates, no strip
};

} // namespace ZorvaneDemo
