// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace Companion {

/// The client takes a stream for over by one line only, and holds the clock of a whole grid for
/// one that it waits for: so the player never ends without that line.
namespace LastWords {

/// Says the line on the standard output, from any thread, and doesn't wait for who doesn't read.
void say();

/// From now on a crash says it too, and any other signal by which somebody ends the process, before
/// it ends with 128 and the signal's number. A signal that has a handler already keeps it.
void sayAtCrash();

/// Lets a crash of the calling thread be told even when its stack is used up.
void lendStack();

} // namespace LastWords

} // namespace Companion
} // namespace ZorvaneClient
