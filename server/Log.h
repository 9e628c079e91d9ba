// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneServer {

/// What the program tells whoever runs it: lines on standard error, without secrets. Any
/// thread may say something.
namespace Log {

void say(const std::string &line);
/// The text as it would be said.
std::string hide(const std::string &text);
/// What this address holds of secrets is never said.
void keepSecret(const std::string &url);
/// Has FFmpeg's own messages said here.
void takeMessages();

} // namespace Log
} // namespace ZorvaneServer
