// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "server/Descriptor.h"

namespace ZorvaneServer {

/// A socket in the state folder, for its owner alone, by which a program that runs tells how it
/// is doing.
class StatusSocket
{
public:
    /// `folder` must be there. `tell` is called on a thread of this object's, which runs until
    /// the process ends.
    StatusSocket(const std::string &folder, std::function<std::string()> tell);

    /// Empty on success, else what failed. Takes the place of one that was left.
    std::string start();

    /// What the program says that runs with that folder. Empty on success, else what failed: none
    /// runs, or it is silent for as long as `patience`.
    static std::string ask(const std::string &folder, std::string *told,
                           std::chrono::milliseconds patience = std::chrono::seconds(5));

private:
    void run();

    const std::string folder;
    const std::function<std::string()> answer;
    Descriptor listening;
};

} // namespace ZorvaneServer
