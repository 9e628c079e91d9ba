// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneService {
}

namespace ZorvaneDemo {

/// The demo is written in the words of the library that it serves with.
using namespace ZorvaneService;

} // namespace ZorvaneDemo
