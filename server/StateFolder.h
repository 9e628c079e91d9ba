// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "server/Descriptor.h"

namespace ZorvaneServer {

/// What the program keeps beside the archive, for its owner alone: the password, certificates,
/// the account's layouts.
class StateFolder
{
public:
    explicit StateFolder(std::string folder) : path(std::move(folder)) {}

    /// Makes the folder, its owner's alone, when there is none. Empty on success, here and below,
    /// else what failed.
    std::string make() const;
    /// Keeps others from running on it for as long as this object lives.
    std::string lock();
    /// The password, which is made when there is none yet. One that can't be read stays.
    std::string readPassword(std::string *password) const;

    const std::string &folder() const { return path; }
    std::string file(const char *name) const { return path + '/' + name; }

private:
    const std::string path;
    Descriptor held;
};

} // namespace ZorvaneServer
