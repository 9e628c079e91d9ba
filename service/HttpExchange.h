// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <string>

#include "service/Http.h"

namespace ZorvaneService {

/// The library's request as it stood on the wire.
HttpRequest wireRequest(const std::string &listener, const httplib::Request &from);
/// Hands `reply` to the library, on the thread that serves its connection.
void give(const HttpReply &reply, httplib::Response *to);

} // namespace ZorvaneService
