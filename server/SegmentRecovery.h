// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "server/SegmentName.h"

namespace ZorvaneServer {

/// Finishes a segment that was left growing: cuts it behind its last whole block, tells its
/// index and length, and gives it its name. A file without a single picture is removed, one
/// that can't be understood is left; then, and on failure, there is nothing. The same holds for
/// one that its writer still has, with EWOULDBLOCK in `errno`.
std::optional<SegmentName> recoverSegment(int folder, const SegmentName &part);

/// Gives a growing file its last name, which no other one has yet.
bool renameSegment(int folder, const SegmentName &part, const SegmentName &finished);

} // namespace ZorvaneServer
