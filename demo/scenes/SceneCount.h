// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneDemo {

/// How many places there are for cameras to watch.
constexpr int sceneCount = 12;

} // namespace ZorvaneDemo
