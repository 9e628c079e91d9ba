// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::Companion;

/// What fits into a pipe that nobody reads yet.
constexpr size_t pipeBytes = 60'000;

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    int ends[2];
    if (::pipe(ends) != 0 || ::write(ends[1], data, std::min(size, pipeBytes)) < 0)
        std::abort();
    ::close(ends[1]);
    Controls controls;
    CommandInput(ends[0], controls).run();
    ::close(ends[0]);
    if (controls.volume() < 0 || controls.volume() > Controls::maxVolume)
        std::abort();
    return 0;
}
