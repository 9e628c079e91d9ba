// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "service/Roster.h"

namespace ZorvaneService {

/// The files with which a client that is started among them finds its service.
struct ClientFiles {
    std::string host;
    int apiPort = 0;
    int streamingPort = 0;
    int flvPort = 0;           ///< also of the page that links for downloads and sign-up lead to
    std::string caCertificate; ///< PEM file of the service's authority

    /// Writes `service.ini` and `local_roster.txt` into `folder`, which is made when it is
    /// missing. For their owner alone, since the roster holds passwords. Servers that a user has
    /// added to the roster stay there.
    bool write(const std::string &folder, const std::vector<ServerWithCameras> &roster) const;
    /// Writes the settings of a client that was never started, with the account to sign in with.
    /// Settings that are there already stay as they are.
    static bool writeAccount(const std::string &folder, const std::string &email,
                             const std::string &password);
};

} // namespace ZorvaneService
