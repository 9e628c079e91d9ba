// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneDemo {

/// How far along something is that begins at `start` and lasts `duration`: 0 to 1, or below 0
/// while it is not there. Both in seconds of a minute that repeats.
double progress(double seconds, double start, double duration);
/// Slow at both ends.
double eased(double part);

} // namespace ZorvaneDemo
