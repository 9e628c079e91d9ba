// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "server/StreamFormat.h"
#include "service/MediaFormat.h"

namespace ZorvaneServer {

/// What a receiver is told of the stream's pictures; of its sound nothing.
ZorvaneService::MediaFormat wireFormat(const StreamFormat &format);

} // namespace ZorvaneServer
