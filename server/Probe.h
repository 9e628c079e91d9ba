// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "server/CameraSource.h"

namespace ZorvaneServer {

/// Watches a camera for some seconds and tells what it sends, without secrets. False when
/// nothing came that can be recorded.
bool probe(const CameraSource &source, std::string *report);

} // namespace ZorvaneServer
