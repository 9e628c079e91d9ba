// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneDemo {

/// How the scenes are encoded.
struct ClipForm {
    bool test = false;  ///< fewer pictures a second, made in a fraction of the time
    bool noise = false; ///< with a sensor's noise and at the bit rates of cameras
};

} // namespace ZorvaneDemo
