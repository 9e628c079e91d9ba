// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <string>

namespace ZorvaneServer {

/// Asks for a camera's name and addresses, tries it, and writes its section at the end of
/// `configFile`, which is made when it is missing. False, with the reason said, when it wasn't
/// added.
bool addCamera(std::istream &answers, std::ostream &questions, const std::string &configFile);

} // namespace ZorvaneServer
